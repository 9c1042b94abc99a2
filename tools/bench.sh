#!/usr/bin/env bash
# Measures the driver, in turns with the same system calls without a driver: out/bench/report.md has tables and plots.
#   tools/bench.sh          takes some five minutes; the less else the machine does, the better
#   tools/bench.sh --short  the same in less than a minute, with figures that mean little
#   tools/bench.sh --docs   as without, and puts tables and plots into docs/performance.md
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"
# shellcheck source=tools/session.sh
. "$(dirname "$0")/session.sh"

out=out/bench
speed_options=() page=()
case "${1:-}" in
  --short) speed_options=(--short) ;;
  --docs) page=(--page docs/performance.md) ;;
esac

# What the figures were taken on. No names of machines or folders.
describe_machine() {
  echo "| measured | $(date -u +%Y-%m-%d), at commit $(git rev-parse --short HEAD 2>/dev/null || echo unknown)${speed_options:+, in short form} |"
  echo "| --- | --- |"
  echo "| processor | $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1), $(nproc) cores |"
  echo "| system | $(sed -n 's/^PRETTY_NAME="\(.*\)"/\1/p' /etc/os-release), Linux $(uname -r | cut -d. -f1-2) |"
  echo "| Wine | $(/usr/lib/wine/wine64 --version) |"
  echo "| compiler | $(x86_64-w64-mingw32-g++-posix --version | head -n 1) |"
  echo "| load before and after | $load_before, $(cut -d' ' -f1 /proc/loadavg) |"
}

prepare "${build_packages[@]}" "${display_packages[@]}" python3-matplotlib
build mingw-release dist driver_speed
start_display
will_test "$PWD/build/mingw-release"
rm -rf "$out"
mkdir -p "$out"
load_before=$(cut -d' ' -f1 /proc/loadavg)

say "measuring"
windows build/mingw-release/bench/speed/Ombrel.exe --driver dist/ombrel/bin/win64/driver_ombrel.dll \
  --out "$out/speed.json" "${speed_options[@]}"

say "writing the report"
describe_machine >"$out/machine.md"
tools/performance.py "$out" "${page[@]}"
say "the report is $out/report.md${page:+, and docs/performance.md has it}"
