#!/usr/bin/env bash
# Looks at the sources without running them: format, clang-tidy, what each file includes, the shell scripts, the
# architecture's rules.
#   tools/lint.sh [--fix]
# --fix formats the sources in place. What is not installed is left out, and said so.
set -euo pipefail
# shellcheck source=tools/usage.sh
. "$(dirname "$0")/usage.sh"
cd "$(dirname "$0")/.."

folders=(platform driver link shaders render devices hmd companion report doctor selftest bench tests)
failed=0

has() {
  command -v "$1" >/dev/null || { echo "-- no $1 here, left out"; return 1; }
}

echo "== format"
mapfile -t sources < <(find "${folders[@]}" -name '*.h' -o -name '*.cpp' | sort)
if has clang-format; then
  if [ "${1:-}" = --fix ]; then
    clang-format -i "${sources[@]}"
  else
    clang-format --dry-run --Werror "${sources[@]}" || failed=1
  fi
fi

echo "== clang-tidy (sources of the native build)"
if has clang-tidy; then
  cmake --preset host-asan -Wno-dev --log-level=WARNING >/dev/null
  mapfile -t native < <(sed -n 's/^ *"file": "\(.*\)",\?$/\1/p' build/host-asan/compile_commands.json |
    grep "^$PWD/" | grep -vE "/(build|tests)/" | sort -u)
  printf '%s\n' "${native[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p build/host-asan --quiet \
    --extra-arg=-Wno-unknown-warning-option || failed=1
fi

# compile_alone PRESET: every file of a preset by itself. In a unity build a file can live on what its neighbours include.
compile_alone() {
  local folder=build/alone/$1
  cmake --preset "$1" -B "$folder" -DOMBREL_UNITY=OFF -Wno-dev --log-level=WARNING >/dev/null
  ninja -C "$folder" -t commands | grep -E " -c $PWD/[^ ]+$" | grep -vF " -c $PWD/build/" |
    awk '!seen[$NF]++' | sed -E 's/ -MD -MT .* -c / -fsyntax-only -c /' |
    (cd "$folder" && xargs -d '\n' -P "$(nproc)" -I '{}' sh -c '{}')
}

echo "== includes (each file compiled by itself, natively and for Windows)"
if has ninja && has c++; then
  compile_alone host-asan || failed=1
fi
if has ninja && has x86_64-w64-mingw32-g++-posix; then
  compile_alone mingw-release || failed=1
fi

echo "== shell scripts"
if has shellcheck; then
  shellcheck -x tools/*.sh .ci/run tests/checks/*.sh tests/checks/msvc/*.sh tests/release/*.sh || failed=1
fi

echo "== architecture"
sh tests/checks/check_sources.sh . || failed=1
exit "$failed"
