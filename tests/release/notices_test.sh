#!/bin/sh
# Is every library that was linked into the driver named in the notices? notices_test.sh MAP BUILD NOTICES
# MAP is the linker's. Of its archives those of the build are the project's own.
set -eu
map=$1 build=$2 notices=$3

# Names of foreign archives, without those of which nothing was taken.
archives=$(sed '/^Discarded input sections/,$d; /^Memory Configuration/,$d' "$map" |
  sed -n 's/^\([^ ]*\.a\)(.*/\1/p' | grep '^/' | grep -v "^$build/" | sed 's,.*/,,' | sort -u)
echo "$archives" | grep -qx 'libstdc++\.a' || { echo "$map does not name libstdc++.a"; exit 1; }

failures=0
for archive in $archives; do
  if ! grep -qwF -- "$archive" "$notices"; then
    echo "$archive is linked into the driver, and the notices do not name it"
    failures=1
  fi
done
exit "$failures"
