#!/bin/sh
# Holds the sources against MSVC, which is not here: check_msvc.sh ROOT WORK [FILE...]
# ROOT is configured for it in the folder WORK, with Clang in its place; all that includes no Windows header, or the given
# files of ROOT alone, is compiled. OMBREL_OPENVR_DIR names the folder of the driver interface header.
set -eu
root=$(cd "$1" && pwd)
mkdir -p "$2"
work=$(cd "$2" && pwd)
shift 2
toolchain=$(cd "$(dirname "$0")" && pwd)/toolchain.cmake

fail() {
  echo "$1"
  exit 1
}

for needed in /usr/bin/clang-19 /usr/lib/llvm-19/include/c++/v1 /usr/include/wine/wine/msvcrt; do
  if [ ! -e "$needed" ]; then
    echo "SKIPPED: no $needed here"
    exit 77
  fi
done

configure() {
  ln -sf /usr/bin/clang-19 "$work/clang-cl"
  cmake -S "$root" -B "$work" -G Ninja --log-level=WARNING -Wno-dev -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_C_COMPILER="$work/clang-cl" -DCMAKE_CXX_COMPILER="$work/clang-cl" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DOMBREL_BUILD_BENCH=OFF -DOMBREL_BUILD_TESTS=OFF \
    -DOMBREL_OPENVR_DIR="${OMBREL_OPENVR_DIR:-}" >"$work/configure.log" 2>&1 ||
    fail "cannot be configured for MSVC: $(cat "$work/configure.log")"
}

# The compiler's, not the resource compiler's.
commands() {
  sed -n 's/^ *"command": "\(.* -c -- .*\)",$/\1/p' "$work/compile_commands.json" | sed 's/\\\(["\\]\)/\1/g'
}

# is_wanted FILE [WANTED...]: what the build makes is not here, and Wine's Windows headers are not Microsoft's.
is_wanted() {
  file=$1
  shift
  [ -e "$file" ] || return 1
  [ $# -eq 0 ] || echo " $* " | grep -qF " ${file#"$root"/} " || return 1
  ! grep -qE '^#include (<windows\.h>|".*_(win32|d3d11)\.h")' "$file"
}

check_symbols() {
  ! commands | grep -qvE ' [-/]Zi ' || fail "Release compiles without /Zi"
  grep -q 'LINK_FLAGS = .*/DEBUG' "$work/build.ninja" || fail "Release links without /DEBUG"
}

check_compiling() {
  commands | while IFS= read -r command; do
    file=${command##* -- }
    if is_wanted "$file" "$@"; then
      echo "${command% -c -- *} /Zs -- $file"
    fi
  done >"$work/wanted"
  [ -s "$work/wanted" ] || fail "nothing to compile"
  (cd "$work" && xargs -d '\n' -n 1 -P "$(nproc)" sh -c <wanted) || fail "MSVC would not compile this"
  echo "$(wc -l <"$work/wanted") sources compile for MSVC's target"
}

configure
check_symbols
check_compiling "$@"
