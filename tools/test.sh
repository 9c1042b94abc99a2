#!/usr/bin/env bash
# Builds everything and runs all tests: natively under sanitizers and a fuzzer, and under Wine what needs Windows.
# Outputs of all tests are kept in build/<preset>/tests.log. The last line counts passed and failed tests.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

# Programs whose tests start threads.
threaded=(context_test platform_test link_test link_threads_test render_test devices_test hmd_test
  stress_test)

passed=0 failed=0 skipped=0

# run_tests PRESET [ctest option...]: shows results as they come, and the output of what failed.
run_tests() {
  local preset=$1 code counts=()
  shift
  say "testing $preset"
  {
    ctest --preset "$preset" --verbose "$@" 2>&1 && code=0 || code=$?
    echo "ctest ended with $code"
  } | tee "build/$preset/tests.log" |
    awk -f tools/test_results.awk -v counts="build/$preset/tests.counts"
  read -r -a counts <"build/$preset/tests.counts"
  passed=$((passed + counts[0]))
  failed=$((failed + counts[1]))
  skipped=$((skipped + counts[2]))
}

prepare "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}"
if ! tools/fetch_dxvk.sh; then
  say "SKIPPED: the pixel tests on a second Direct3D, which could not be fetched"
  skipped=$((skipped + 1))
fi
start_display

build host-asan
run_tests host-asan -j "$(nproc)"
build host-tsan "${threaded[@]}"
run_tests host-tsan -R "^($(IFS='|' && echo "${threaded[*]}"))\$"
build host-fuzz fuzz_companion
run_tests host-fuzz -R '^fuzz_companion_briefly$'
build mingw-release
# One more than processors: most of these tests wait most of their time. Each Wine prefix has one at a time.
run_tests mingw-release -j "$(($(nproc) + 1))"

say "all tests have run"
echo "$passed passed, $failed failed, $skipped skipped"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
