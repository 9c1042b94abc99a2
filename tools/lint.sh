#!/usr/bin/env bash
# Looks at the sources without running them: format, clang-tidy, the shell scripts, the architecture's rules.
# tools/lint.sh [--fix]: --fix formats the sources in place. What is not installed is left out, and said so.
set -euo pipefail
cd "$(dirname "$0")/.."

folders=(platform driver link shaders render devices hmd bench tests)
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

echo "== shell scripts"
if has shellcheck; then
  shellcheck -x tools/*.sh .ci/run tests/checks/*.sh tests/checks/msvc/*.sh || failed=1
fi

echo "== architecture"
sh tests/checks/check_sources.sh . || failed=1
exit "$failed"
