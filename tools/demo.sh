#!/usr/bin/env bash
# Builds the driver and runs a session in each mode of the headset: a stand-in runtime, a stand-in companion, real frames.
# What the companion received is then in out/demo/direct/ and out/demo/virtual/.
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
exit "$failed"
