#!/bin/sh
# Shows that check_msvc.sh finds what MSVC would refuse: check_msvc_test.sh ROOT
# Each fault is put into a copy of ROOT's sources.
set -eu
check=$(cd "$(dirname "$0")" && pwd)/check_msvc.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

(cd "$1" && cp -r CMakeLists.txt THIRD_PARTY_NOTICES.txt cmake resources report selftest companion platform driver link shaders render devices hmd "$work")
[ -n "${OMBREL_OPENVR_DIR:-}" ] || OMBREL_OPENVR_DIR=$(cd "$1" && pwd)/third_party/openvr
export OMBREL_OPENVR_DIR

# expect NAME CODE TEXT FILE: compiles that file alone.
expect() {
  output=$(sh "$check" "$work" "$work/build" "$4" 2>&1) && code=0 || code=$?
  [ "$code" -ne 77 ] || { echo "$output" && exit 77; }
  case $output in
    *"$3"*) [ "$code" -eq "$2" ] && return ;;
  esac
  echo "$1: expected '$3', got '$output' (exit $code)"
  failures=1
}

# replace FILE OLD NEW, both as sed has them; a fault that changes nothing is none.
replace() {
  cp "$work/$1" "$work/before"
  sed -i "s|$2|$3|" "$work/$1"
  ! cmp -s "$work/$1" "$work/before" || { echo "$1 has no '$2'" && exit 1; }
}

expect "the sources as they are" 0 "1 sources compile" render/format_rule.cpp

replace render/format_rule.cpp 'const auto found' 'const auto* found'
expect "an array's iterator taken for a pointer" 1 "variable 'found' with type 'const auto *'" render/format_rule.cpp
mv "$work/before" "$work/render/format_rule.cpp"

replace driver/driver_factory.cpp '^namespace {$' '&\n[[maybe_unused]] const char* kStart = std::string_view().begin();'
expect "a view's iterator taken for a pointer" 1 "no viable conversion from 'const_iterator'" \
  driver/driver_factory.cpp
mv "$work/before" "$work/driver/driver_factory.cpp"

replace cmake/OmbrelSettings.cmake 'DEBUG_INFORMATION_FORMAT ProgramDatabase' 'DEBUG_INFORMATION_FORMAT ""'
expect "symbols that Release has not" 1 "Release compiles without /Zi" render/format_rule.cpp
mv "$work/before" "$work/cmake/OmbrelSettings.cmake"

replace cmake/OmbrelDriverDll.cmake ' /DEBUG ' ' '
expect "symbols that are not linked" 1 "Release links without /DEBUG" render/format_rule.cpp

[ "$failures" -eq 0 ] && echo "every fault is found"
