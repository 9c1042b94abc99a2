#!/usr/bin/env bash
# Counts which lines and branches of the driver's folders the tests run, natively and under Wine, and writes
# docs/coverage.md: tools/coverage.sh [host|mingw]...
# With a name, only that build's tests run anew, and what is known of the other is kept.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

builds=build/coverage
# Programs that are ended, crash or call _exit() write no counts; the driver's do when it is unloaded.
# Tests are built with -O1, which would inline some of the driver's headers before they are counted.
flags='-O0 -g1 -DNDEBUG --coverage -fprofile-update=atomic -fprofile-abs-path -fno-inline -fno-early-inlining'
only="-fprofile-filter-files='$PWD/(platform|link|shaders|render|devices|hmd|driver)/.*'"

# programs_of FOLDER LABELS: the tests that are programs of the build, but for those that run no driver.
programs_of() {
  comm -12 <(ctest --test-dir "$1" -N -L "^($2)\$" | sed -n 's/^ *Test *#[0-9]*: //p' | grep -vE "linter|preview" | sort) \
    <(ninja -C "$1" -t targets all | sed -n 's/^\([^/:]*\): .*/\1/p' | sort)
}

# measure NAME LABELS CONFIGURE...: a test that fails is told of; what it ran counts nevertheless.
measure() {
  local folder=$builds/$1 labels=$2
  say "building $folder"
  cmake "${@:3}" -B "$folder" -DCMAKE_BUILD_TYPE=RelWithDebInfo "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=$flags $only" \
    -Wno-dev --log-level=WARNING
  find "$folder" -name '*.gcda' -delete
  mapfile -t targets < <(programs_of "$folder" "$labels")
  cmake --build "$folder" --target "${targets[@]}"
  say "testing $folder"
  # One at a time: Windows programs do not lock the files of counts against each other.
  ctest --test-dir "$folder" -R "^($(IFS='|'; echo "${targets[*]}"))\$" --timeout 600 --output-on-failure \
    >"$folder/tests.log" || true
  sed -n '/tests passed/,$p' "$folder/tests.log"
}

prepare "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}" python3
will_test "$PWD/$builds/mingw"
[ $# -gt 0 ] || set -- host mingw
for name in "$@"; do
  case $name in
    host) measure host native --preset host-asan -DOMBREL_SANITIZE= ;;
    mingw) start_display; measure mingw 'windows|gpu' --preset mingw-release ;;
    *) echo "no build is called $name" >&2; exit 1 ;;
  esac
done
python3 tools/coverage.py . docs/coverage.md \
  $builds/host=gcov $builds/mingw=x86_64-w64-mingw32-gcov-posix
say "by files: docs/coverage.md"
