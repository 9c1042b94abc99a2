#!/usr/bin/env bash
# Builds the driver and runs a session in each mode of the headset: a stand-in runtime, a stand-in companion, real frames.
# What came of it is then on a page, out/demo/report.html; the pictures and logs are in out/demo/direct/ and
# out/demo/virtual/.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

prepare "${build_packages[@]}" "${display_packages[@]}"
build mingw-release dist runtime_sim companion_sim demo_report
start_display
# shellcheck source=tools/session.sh
. tools/session.sh
failed=0
for mode in direct virtual; do
  run_session "$mode" "out/demo/$mode" 840 || failed=1
done
say "results, in out/demo/report.html"
report_sessions out/demo || failed=1
exit "$failed"
