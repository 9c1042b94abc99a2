#!/usr/bin/env bash
# Builds everything and runs all tests: natively under sanitizers and a fuzzer, and under Wine what needs Windows.
#   tools/test.sh
# build/PRESET/test-results/ keeps what each test found, as JUnit files, and build/PRESET/Testing/Temporary/LastTest.log
# all that it printed. The last line counts passed, failed and skipped tests.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

# Programs whose tests start threads.
threaded=(context_test platform_test link_test link_threads_test render_test devices_test hmd_test
  stress_test)

results=()

# run_tests PRESET [ctest option...]: shows results as they come, and the output of what failed.
run_tests() {
  local folder=$PWD/build/$1/test-results
  say "testing $1"
  results+=("$folder")
  ctest --preset "$1" --no-tests=error --output-junit "$folder/ctest.xml" --test-output-size-passed 1000000 "${@:2}" || true
}

prepare "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}"
skipped=0
if ! tools/fetch_dxvk.sh; then
  say "SKIPPED: the pixel tests on a second Direct3D, which could not be fetched"
  skipped=1
fi
start_display
will_test "$PWD/build/mingw-release"

build host-asan
run_tests host-asan -j "$(nproc)"
build host-tsan "${threaded[@]}"
run_tests host-tsan -j "$(nproc)" -R "^($(IFS='|' && echo "${threaded[*]}"))\$"
build host-fuzz fuzz_companion
run_tests host-fuzz -R '^fuzz_companion_briefly$'
build mingw-release
# One more than processors: most of these tests wait most of their time. Each Wine prefix has one at a time.
run_tests mingw-release -j "$(($(nproc) + 1))"

say "all tests have run"
tools/test_results.py --skipped "$skipped" "${results[@]}"
