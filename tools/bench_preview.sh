#!/usr/bin/env bash
# Measures the preview between a stand-in runtime and a headless browser, and prints tables: tools/bench_preview.sh [FRAMES]
# 10,000 frames without a number, which takes some ten minutes; the less else the machine does, the better.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

prepare "${build_packages[@]}" "${display_packages[@]}" chromium chromium-driver python3-selenium
build mingw-release dist runtime_sim preview_on_bench preview_encode_speed
start_display
bench=$PWD/build/mingw-release/bench
export OMBREL_TEST_PREFIX=$wine_prefix OMBREL_TEST_PREVIEW=$bench/preview/Ombrel.exe \
  OMBREL_TEST_ENCODING=$PWD/build/mingw-release/tests/preview/preview_encode_speed.exe \
  OMBREL_TEST_RUNTIME=$bench/runtime_sim/runtime_sim.exe OMBREL_TEST_DRIVER=$PWD/dist/ombrel
say "measuring"
PYTHONPATH=tests/pages /usr/bin/python3 -B tests/preview/measure.py "$@"
