#!/usr/bin/env bash
# Builds the driver and runs a session with it: a stand-in runtime, a stand-in companion, real frames.
# What the companion received is then in out/demo/.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

prepare "${build_packages[@]}" "${display_packages[@]}"
build mingw-release dist runtime_sim companion_sim demo_report
start_display
# shellcheck source=tools/session.sh
. tools/session.sh
run_session out/demo 300
