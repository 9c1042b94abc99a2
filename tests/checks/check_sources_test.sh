#!/bin/sh
# Shows that check_sources.sh finds each kind of breach, and finds none in a tree that has none.
set -eu
check=$(cd "$(dirname "$0")" && pwd)/check_sources.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failures=0

start_over() {
  rm -rf "$tree"
  mkdir -p "$tree/platform/include/platform" "$tree/driver/context" "$tree/link" "$tree/render" "$tree/hmd" \
    "$tree/driver" "$tree/bench/companion" "$tree/bench/base/include/base" "$tree/companion/library"
  echo '#include <windows.h>' >"$tree/platform/pipe_win32.cpp"
  printf '#ifdef _WIN32\n#endif\n' >"$tree/platform/include/platform/abi.h"
  printf '#include "platform/abi.h"\n#include "context/log.h"\n' >"$tree/link/core.cpp"
  echo '#include "hmd/headset.h"' >"$tree/driver/provider.cpp"
  echo '#include "companion/wire.h"' >"$tree/bench/companion/main.cpp"
}

expect() {
  name=$1 text=$2
  output=$(sh "$check" "$tree" 2>&1) && code=0 || code=$?
  case $output in
    *"$text"*) ;;
    *)
      echo "$name: expected '$text', got '$output' (exit $code)"
      failures=1
      ;;
  esac
  case $text in
    "the sources keep the rules") wanted=0 ;;
    *) wanted=1 ;;
  esac
  if [ "$code" -ne "$wanted" ]; then
    echo "$name: exit $code, expected $wanted"
    failures=1
  fi
  start_over
}

lines() {
  yes '// line' | head -n "$1"
}

start_over
expect "a sound tree" "the sources keep the rules"

echo '#include "link/wire.h"' >>"$tree/bench/companion/main.cpp"
expect "a bench that includes the driver" "bench/companion/main.cpp:2: bench includes the driver"

echo '#include "link/wire.h"' >"$tree/companion/library/messages.cpp"
expect "a kit that includes the driver" "companion/library/messages.cpp:1: companion includes the driver"

echo '#include "base/clock.h"' >"$tree/companion/library/messages.cpp"
expect "a kit that includes the bench" "companion/library/messages.cpp:1: the kit includes the bench"

echo '#include "ombrel/protocol.h"' >"$tree/link/core.cpp"
expect "a driver that includes the kit" "link/core.cpp:1: the driver includes the companion"

echo '#include <windows.h>' >"$tree/hmd/headset.cpp"
expect "windows.h in a plain file" "hmd/headset.cpp:1: system header"

echo '#include <d3d11_1.h>' >"$tree/render/renderer.h"
expect "Direct3D in a plain header" "render/renderer.h:1: system header"

echo '#ifdef _WIN32' >"$tree/render/renderer_d3d11.cpp"
expect "#ifdef outside platform" "render/renderer_d3d11.cpp:1: conditional compilation"

echo '# if defined(X)' >"$tree/driver/provider.cpp"
expect "#if outside platform" "driver/provider.cpp:1: conditional compilation"

echo '  LoadLibraryA("helper.dll");' >>"$tree/platform/pipe_win32.cpp"
expect "a library loaded by name" "platform/pipe_win32.cpp:2: loads a library"

echo 'auto module = LoadLibraryExW (name, nullptr, 0);' >"$tree/render/device_d3d11.cpp"
expect "a library loaded with flags" "render/device_d3d11.cpp:1: loads a library"

echo 'if (!CreateProcessA(nullptr, line, 0, 0, 0, 0, 0, 0, 0, 0)) return;' >"$tree/link/core.cpp"
expect "a program started" "link/core.cpp:1: loads a library or starts a program"

echo 'std::system("notepad");' >"$tree/driver/provider.cpp"
expect "a command line started" "driver/provider.cpp:1: loads a library or starts a program"

printf '// FreeLibrary comes later.\nTerminateProcess(process, 0);\n' >"$tree/platform/process_win32.cpp"
expect "calls that only sound like it" "the sources keep the rules"

echo '#include <winternl.h>' >>"$tree/platform/pipe_win32.cpp"
expect "a header that differs between kits" "platform/pipe_win32.cpp:2: header that Microsoft has with other contents"

echo '#include <unistd.h>' >>"$tree/platform/pipe_win32.cpp"
expect "a header of other compilers" "platform/pipe_win32.cpp:2: header that Microsoft has not"

echo '[[gnu::always_inline]] inline int One() { return 1; }' >"$tree/link/core.h"
expect "an attribute of other compilers" "link/core.h:1: extension that MSVC has not"

printf '#include <unistd.h>\nint fd = __builtin_ctz(1);\n' >"$tree/platform/pipe_posix.cpp"
expect "the same where MSVC never looks" "the sources keep the rules"

echo '  if (kTail != 0 && i == kWords) return;' >"$tree/link/core.h"
expect "a constant condition" "link/core.h:1: condition that is constant"

echo '  while (sizeof(Frame) < kSize) Grow();' >"$tree/link/core.h"
expect "a constant condition of a loop" "link/core.h:1: condition that is constant"

printf '  if constexpr (kTail != 0) Copy();\n  if (kind == Kind::kRead && size > kSize) return;\n' >"$tree/link/core.h"
expect "conditions that only look like it" "the sources keep the rules"

echo 'const ombrel::EmergencyMemory memory;' >"$tree/driver/factory.cpp"
expect "a constant without an initializer" "driver/factory.cpp:1: constant without an initializer"

printf 'constexpr int kOne = 1;\nconst Guard guard{};\nextern const int kTwo;\n' >"$tree/driver/factory.cpp"
expect "constants that have one" "the sources keep the rules"

lines 300 >"$tree/link/core.cpp"
expect "a long source" "link/core.cpp: 300 lines"

lines 120 >"$tree/link/core.h"
expect "a long header" "link/core.h: 120 lines"

lines 299 >"$tree/link/core.cpp"
lines 119 >"$tree/link/core.h"
expect "files at the limit" "the sources keep the rules"

[ "$failures" -eq 0 ] && echo "every breach is found"
