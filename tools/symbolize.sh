#!/usr/bin/env bash
# Tells which function and which line of the sources an address is in:
#   tools/symbolize.sh [--symbols ZIP|FOLDER] MODULE+OFFSET...
# for example: tools/symbolize.sh --symbols ombrel-0.1.0-symbols-win64.zip driver_ombrel.dll+0x1390
# Offsets are hexadecimal, as crash reports have them. Without --symbols those of the last build in dist/symbols are read.
# The time stamp of the symbols is printed: it must be the one that the crash report gives for the module.
set -euo pipefail
started_in=$PWD
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

binutils=x86_64-w64-mingw32
symbols=dist/symbols

refuse() {
  echo "$1" >&2
  exit 1
}

# unpack_if_zip FILE: symbols is then a folder.
unpack_if_zip() {
  [ -e "$1" ] || refuse "there is no $1"
  symbols=$1
  if [ -f "$1" ]; then
    symbols=$(mktemp -d)
    trap 'rm -rf "$symbols"' EXIT
    (cd "$symbols" && cmake -E tar xf "$1")
  fi
}

# time_stamp FILE: of a module or its symbols, as Windows' event log writes it.
time_stamp() {
  local date
  date=$(TZ=UTC "$binutils-objdump" -p "$1" | sed -n 's,^Time/Date[[:space:]]*,,p' | head -n 1)
  printf '0x%x' "$(date -u -d "$date" +%s)"
}

# symbolize MODULE OFFSET
symbolize() {
  local file base
  file=$(find "$symbols" -iname "$1.debug" -o -iname "$1.dll.debug" | head -n 1)
  [ -n "$file" ] || refuse "there are no symbols of $1 in $symbols"
  base=$("$binutils-objdump" -p "$file" | sed -n 's/^ImageBase[[:space:]]*/0x/p')
  echo "$1+$2 (time stamp $(time_stamp "$file")):"
  "$binutils-addr2line" -e "$file" --demangle --functions --inlines --pretty-print \
    "$(printf '0x%x' $((base + $2)))" | sed 's, at /ombrel/, at ,; s/^/  /'
}

if [ "${1:-}" = --symbols ]; then
  given=${2:?--symbols needs a zip or a folder}
  shift 2
  need cmake
  unpack_if_zip "$(cd "$started_in" && realpath "$given")"
fi
[ $# -gt 0 ] || refuse "usage: tools/symbolize.sh [--symbols ZIP|FOLDER] MODULE+OFFSET..."
need binutils-mingw-w64-x86-64
for address in "$@"; do
  [[ $address =~ ^(.+)\+(0x)?([0-9A-Fa-f]+)$ ]] || refuse "$address is not MODULE+OFFSET"
  symbolize "${BASH_REMATCH[1]}" "0x${BASH_REMATCH[3]}"
done
