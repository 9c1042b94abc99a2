#!/bin/sh
# Compiles ombrel/protocol.h, with nothing before it, as C11 and C++ with each compiler that is here:
# check_protocol_header.sh ROOT [COMPILER...]
set -eu
include=$1/companion/include
shift
if [ $# -eq 0 ]; then
  set -- gcc g++ x86_64-w64-mingw32-gcc-posix x86_64-w64-mingw32-g++-posix \
    clang clang++ "clang --target=x86_64-pc-windows-msvc -ffreestanding" \
    "clang++ --target=x86_64-pc-windows-msvc -ffreestanding"
fi

failed=0
for compiler in "$@"; do
  program=${compiler%% *}
  if ! command -v "$program" >/dev/null; then
    echo "$program is not here"
    continue
  fi
  case $program in
    *++*) language=c++ standards="c++11 c++20" ;;
    *) language=c standards=c11 ;;
  esac
  for standard in $standards; do
    # shellcheck disable=SC2086  # the compiler with its options
    echo '#include <ombrel/protocol.h>' | $compiler -x $language -std=$standard -fsyntax-only -Wall -Wextra -Wpedantic \
      -Werror -Wpadded -I "$include" - && echo "$compiler, $standard: compiles" || failed=1
  done
done
exit $failed
