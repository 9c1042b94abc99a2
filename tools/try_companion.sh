#!/usr/bin/env bash
# Runs a companion with the driver and tells which rules of docs/protocol.md it breaks:
#   tools/try_companion.sh PATH/Ombrel.exe [--mode direct|virtual] [--seconds N] [--fps N] [--report FOLDER] [--built]
#                          [-- ARGUMENT...]
# The companion is a Windows program of any language; arguments behind -- are its own. Its shared textures are supplied
# beneath it. The report, in out/companion without --report, has what it printed, the verdict as text, JSON and page, all
# messages, and both sides' recordings.
#   --mode      which headset the driver shows: direct (the default) or virtual
#   --seconds   of frames, 10 without it; the session ends earlier when the companion does
#   --fps       frames a second that the runtime presents, instead of what the companion asks for
#   --built     takes what is built, and installs and builds nothing
# Ends with 0 when no rule was broken and frames came, 1 when one was, 3 when no frame came, 2 when it could not be tried.
set -euo pipefail
started_in=$PWD
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"
wine_prefix=$PWD/build/mingw-release/wine_companion

companion='' mode=direct seconds=10 fps=0 report=$PWD/out/companion built=''
arguments=()

refuse() {
  echo "try_companion: $1" >&2
  exit 2
}

from_caller() {
  (cd "$started_in" && realpath -m -- "$1")
}

while [ $# -gt 0 ]; do
  case $1 in
    --mode) mode=${2:?--mode needs direct or virtual}; shift ;;
    --seconds) seconds=${2:?--seconds needs a number}; shift ;;
    --fps) fps=${2:?--fps needs a number}; shift ;;
    --report) report=$(from_caller "${2:?--report needs a folder}"); shift ;;
    --built) built=yes ;;
    --) shift; arguments=("$@"); break ;;
    -*) refuse "there is no option $1" ;;
    *) companion=$(from_caller "$1") ;;
  esac
  shift
done
[ -n "$companion" ] || refuse "name the companion's program; --help says how"
[ -f "$companion" ] || refuse "there is no $companion"
[ "$(basename "$companion")" = Ombrel.exe ] || refuse "the program must be named Ombrel.exe, spelled like this (rule P1)"
case $mode in direct | virtual) ;; *) refuse "there is no mode $mode" ;; esac

if [ -z "$built" ]; then
  prepare "${build_packages[@]}" "${display_packages[@]}"
  build mingw-release dist recorded_runtime sharing_dropin ombrel_check ombrel_inspect idle_companion
fi
[ -n "${DISPLAY:-}" ] || start_display
# shellcheck source=tools/session.sh
. tools/session.sh

bench=$PWD/build/mingw-release/bench checker=$PWD/build/mingw-release/companion/checker
rm -rf "$report"
mkdir -p "$report"

# Processes that the driver looks for by name have a folder each: names of files are found in any case.
copy_idle() {
  mkdir -p "$wine_prefix/$1"
  cp "$bench/companion_sim/idle_companion.exe" "$wine_prefix/$1/$2.exe"
}

start_companion() {
  cd "$(dirname "$companion")"
  export OMBREL_RECORDING="Z:$report/companion.recording"
  exec "$OLDPWD/tools/wine_sharing.sh" "$wine_prefix" "$bench/dropin/d3d11.dll" ./Ombrel.exe "${arguments[@]}"
}

# The driver never looks at the first process of the list.
say "starting the companion"
: >"$report/companion.recording" # stays empty when the companion makes no Direct3D 11 device
copy_idle idle idle
copy_idle monitor vrmonitor
windows "$wine_prefix/idle/idle.exe" 3600 </dev/null >/dev/null 2>&1 &
start_companion </dev/null > >(tee "$report/companion.log") 2>&1 &
companion_process=$!

say "playing $seconds seconds in $mode mode"
windows "$bench/recorder/recorded_runtime.exe" --driver dist/ombrel --settings "tools/demo/$mode.json" \
  --sharing stand-in --keep-devices --haptics bench/recorder/haptics.json --monitor "Z:$wine_prefix/monitor/vrmonitor.exe" --seconds "$seconds" --fps "$fps" \
  --recording "Z:$report/driver.recording" --driver-log "Z:$report/driver.log" >"$report/runtime.log" 2>&1 ||
  echo "the runtime ended with a failure: $report/runtime.log" >&2

# Companions wait for the next driver; one that ends with the connection is given the time.
for _ in {1..20}; do
  kill -0 "$companion_process" 2>/dev/null || break
  sleep 0.1
done
kill "$companion_process" 2>/dev/null || true

say "the verdict"
code=0
windows "$checker/ombrel_check.exe" --driver "Z:$report/driver.recording" \
  --companion "Z:$report/companion.recording" --json "Z:$report/check.json" \
  --template build/mingw-release/report/template.html --html "Z:$report/report.html" \
  | tr -d '\r' | tee "$report/check.txt" || code=${PIPESTATUS[0]}
windows "$checker/ombrel_inspect.exe" "Z:$report/driver.recording" | tr -d '\r' >"$report/messages.txt" || true
say "the report is in $report"
exit "$code"
