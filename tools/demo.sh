#!/usr/bin/env bash
# Builds the driver and runs a session in each mode of the headset: a stand-in runtime, a stand-in companion, real frames.
# What came of it is then on a page, out/demo/report.html; the pictures and logs are in out/demo/direct/ and
# out/demo/virtual/.
#   tools/demo.sh
#   tools/demo.sh --preview [--seconds N]: a session to look into with a browser instead (docs/preview.md); prints the
#   address, and serves it for N seconds or until Ctrl+C
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

# serve_preview SECONDS: 0 for no end
serve_preview() {
  local out=out/demo/preview built=build/mingw-release preview
  wine_prefix=$PWD/$built/wine_companion
  wine_prefixes=("$wine_prefix")
  rm -rf "$out"
  mkdir -p "$out"
  tools/wine_sharing.sh "$wine_prefix" "$built/bench/dropin/d3d11.dll" \
    "$built/companion/preview/program/Ombrel.exe" >"$out/preview.log" 2>&1 &
  preview=$!
  wait_for_line "$out/preview.log" http://localhost 60
  say "the demo's room is at $(grep -o 'http://localhost[^[:space:]]*' "$out/preview.log")"
  windows "$built/bench/runtime_sim/runtime_sim.exe" --driver dist/ombrel --settings tools/demo/direct.json \
    --haptics tools/demo/haptics.json --keep-devices --quiet --seconds "$1" --driver-log "$out/driver.log" \
    >"$out/runtime.log"
  kill "$preview"
}

prepare "${build_packages[@]}" "${display_packages[@]}"
if [ "${1:-}" = --preview ]; then
  seconds=0
  [ "${2:-}" != --seconds ] || seconds=${3:?--seconds needs a number}
  build mingw-release dist runtime_sim preview sharing_dropin
  start_display
  # shellcheck source=tools/session.sh
  . tools/session.sh
  serve_preview "$seconds"
  exit
fi
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
