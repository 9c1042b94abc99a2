#!/usr/bin/env bash
# Measures the preview between a stand-in runtime and a headless browser, and prints tables: tools/bench_preview.sh [FRAMES]
# 10,000 frames without a number, which takes some ten minutes; the less else the machine does, the better.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

prepare "${build_packages[@]}" "${display_packages[@]}" chromium chromium-driver python3-selenium
build mingw-release dist runtime_sim preview preview_encode_speed sharing_dropin
start_display
will_test "$PWD/build/mingw-release"
built=$PWD/build/mingw-release
export OMBREL_TEST_PREFIX=${wine_prefix}_companion OMBREL_TEST_SHARING=$built/bench/dropin/d3d11.dll \
  OMBREL_TEST_PREVIEW=$built/companion/preview/program/Ombrel.exe \
  OMBREL_TEST_ENCODING=$built/tests/preview/preview_encode_speed.exe \
  OMBREL_TEST_RUNTIME=$built/bench/runtime_sim/runtime_sim.exe OMBREL_TEST_DRIVER=$PWD/dist/ombrel
say "measuring"
PYTHONPATH=tests/pages /usr/bin/python3 -B tests/preview/measure.py "$@"
