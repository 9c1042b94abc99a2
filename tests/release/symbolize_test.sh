#!/bin/sh
# Does tools/symbolize.sh find functions and lines? symbolize_test.sh SOURCES DIST VERSION. OBJDUMP names the program.
set -eu
sources=$1 dist=$2 version=$3
dll=$dist/ombrel/bin/win64/driver_ombrel.dll
failures=0

# expect CASE WORDS ARGUMENT...
expect() {
  name=$1 words=$2
  shift 2
  output=$("$sources/tools/symbolize.sh" "$@" 2>&1) || true
  case $output in
    *"$words"*) ;;
    *)
      echo "$name: expected '$words', got '$output'"
      failures=1
      ;;
  esac
}

# The one function whose offset the library itself tells, and the line that it begins in.
offset=$("$OBJDUMP" -p "$dll" | sed -n 's/^.* \([0-9a-f]*\) Export RVA$/\1/p')
source=driver/driver_factory.cpp
line=$(grep -n 'HmdDriverFactory(' "$sources/$source" | head -n 1 | cut -d: -f1)

expect "a function's offset" "HmdDriverFactory at $source:$line" --symbols "$dist/symbols" "driver_ombrel.dll+0x$offset"
expect "the same out of the zip, in other letters" "HmdDriverFactory at $source:$line" \
  --symbols "$dist/ombrel-$version-symbols-win64.zip" "Driver_Ombrel.DLL+$offset"
expect "the name as Wine writes it" "HmdDriverFactory at $source:$line" --symbols "$dist/symbols" "driver_ombrel+0x$offset"
expect "an offset outside" "??" --symbols "$dist/symbols" driver_ombrel.dll+0x7fffffff
expect "another module" "there are no symbols of other.dll" --symbols "$dist/symbols" other.dll+0x10
expect "no offset" "driver_ombrel.dll is not MODULE+OFFSET" driver_ombrel.dll
expect "symbols that are not there" "there is no" --symbols "$dist/none" driver_ombrel.dll+0x10

# The library's own time stamp, as Windows' event log would give it.
stamp=$(od -A n -t x4 -j $(($(od -A n -t u4 -j 60 -N 4 "$dll") + 8)) -N 4 "$dll" | tr -d ' ')
expect "the time stamp" "time stamp 0x$stamp" --symbols "$dist/symbols" "driver_ombrel.dll+0x$offset"
exit "$failures"
