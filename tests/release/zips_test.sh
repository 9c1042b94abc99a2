#!/bin/sh
# What is in the zips, and whether they are the same each time: zips_test.sh SOURCES BUILD VERSION. OBJDUMP names the program.
set -eu
sources=$1 build=$2 version=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  echo "$1"
  failures=1
}

# pack NAME ZONE
pack() {
  SOURCE_DATE_EPOCH=1000000000 TZ=$2 cmake "-DBUILD=$build" -DCONFIG=RelWithDebInfo "-DDIST=$work/$1" \
    -DCOMPONENTS=driver,symbols,preview,selftest -P "$sources/cmake/make_dist.cmake" >/dev/null
}

pack first UTC
sleep 2 # a zip's times are even seconds
pack second Asia/Tokyo

for suffix in win64 symbols-win64 preview-win64 selftest-win64; do
  zip=ombrel-$version-$suffix.zip
  cmp "$work/first/$zip" "$work/second/$zip" || fail "$zip is not the same each time"
  mkdir "$work/$suffix"
  (cd "$work/$suffix" && cmake -E tar xf "$work/first/$zip")
  notices=$(find "$work/$suffix" -name THIRD_PARTY_NOTICES.txt)
  tr -d '\r' <"${notices:-/dev/null}" | cmp - "$sources/THIRD_PARTY_NOTICES.txt" || fail "$zip has other notices"
done
[ "$(find "$work/first" -maxdepth 1 -name '*.zip' | wc -l)" -eq 4 ] || fail "there is a zip that is not looked at"

diff -r "$work/win64/ombrel" "$work/first/ombrel" || fail "the driver's zip is not its folder"
diff -r "$work/preview-win64/ombrel-preview" "$work/first/ombrel-preview" || fail "the preview's zip is not its folder"
diff -r "$work/symbols-win64/symbols" "$work/first/symbols" || fail "the zip of symbols is not their folder"
diff -r "$work/selftest-win64/ombrel-selftest" "$work/first/ombrel-selftest" || fail "the self-test's zip is not its folder"
# What its scripts name must be there, and nothing in it has symbols.
selftest=$work/selftest-win64/ombrel-selftest
for file in $(grep -oh '"%~dp0bin[^"]*' "$selftest"/*.cmd | cut -c 7- | tr '\134' / | sort -u); do
  [ -f "$selftest/$file" ] || fail "the self-test's scripts name $file, which is not in its zip"
done
find "$selftest" -name '*.exe' -o -name '*.dll' >"$work/programs"
while IFS= read -r program; do
  ! "$OBJDUMP" -h "$program" | grep -q '\.debug_' || fail "$program has symbols"
done <"$work/programs"
cmp "$work/win64/ombrel/bin/win64/driver_ombrel.dll" \
  "$work/selftest-win64/ombrel-selftest/driver/ombrel/bin/win64/driver_ombrel.dll" || fail "the self-test has another driver"
list=resources/files-$version.txt
(cd "$work/win64/ombrel" && find . -type f ! -path "./$list" | cut -c 3- | LC_ALL=C sort) >"$work/found"
tr -d '\r' <"$work/win64/ombrel/$list" | tr '\134' / | LC_ALL=C sort | diff "$work/found" - || fail "$list is not what is there"
exit "$failures"
