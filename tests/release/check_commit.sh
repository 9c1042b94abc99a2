#!/bin/sh
# Reads the product version, which names the commit, back from a DLL: check_commit.sh DLL EXPECTED. WINDRES names the program.
set -eu
found=$("$WINDRES" -J coff -i "$1" -O rc 2>/dev/null | sed -n 's/^ *VALUE "ProductVersion", "\(.*\)"$/\1/p')
if [ "$found" != "$2" ]; then
  echo "$1 is of $found, not of $2"
  exit 1
fi
echo "$1 is of $found"
