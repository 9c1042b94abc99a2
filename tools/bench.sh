#!/usr/bin/env bash
# Measures the driver beside its floors: out/bench/report.md has the tables, out/bench/*.svg the distributions.
#   tools/bench.sh          takes some minutes; the less else the machine does, the better
#   tools/bench.sh --short  the same in less than a minute, with figures that mean little
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"
# shellcheck source=tools/session.sh
. "$(dirname "$0")/session.sh"

bench_packages=(g++ libbenchmark-dev gnuplot-nox)
out=out/bench
speed_options=()
repetitions=40
if [ "${1:-}" = --short ]; then
  speed_options=(--short)
  repetitions=5
fi

# What the figures were taken on. No names of machines or folders.
describe_machine() {
  echo "| | |"
  echo "| --- | --- |"
  echo "| processor | $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1), $(nproc) cores |"
  echo "| system | $(sed -n 's/^PRETTY_NAME="\(.*\)"/\1/p' /etc/os-release), Linux $(uname -r | cut -d. -f1-2) |"
  echo "| Wine | $(/usr/lib/wine/wine64 --version) |"
  echo "| compilers | $(g++ --version | head -n 1), $(x86_64-w64-mingw32-g++-posix --version | head -n 1) |"
  echo "| load before and after | $load_before, $(cut -d' ' -f1 /proc/loadavg) |"
  echo "| commit | $(git rev-parse --short HEAD 2>/dev/null || echo unknown) |"
}

prepare "${build_packages[@]}" "${display_packages[@]}" "${bench_packages[@]}"
build mingw-release dist driver_speed empty_library
build host-release micro_benchmark speed_report
start_display
rm -rf "$out"
mkdir -p "$out"
load_before=$(cut -d' ' -f1 /proc/loadavg)

say "measuring what needs no Windows"
build/host-release/tests/speed/micro_benchmark --benchmark_min_time=0.02 --benchmark_repetitions="$repetitions" \
  --benchmark_enable_random_interleaving=true --benchmark_out="$out/micro.json" --benchmark_out_format=json \
  >"$out/micro.log" 2>&1

say "measuring the driver's library"
windows build/mingw-release/bench/speed/Ombrel.exe --driver dist/ombrel/bin/win64/driver_ombrel.dll \
  --empty-dll build/mingw-release/bench/floor/libempty_library.dll --out "$out/speed.json" "${speed_options[@]}"

say "writing the report"
{
  echo "# What the driver costs beside its floors"
  echo
  describe_machine
  echo
  build/host-release/bench/speed/speed_report --values "$out/speed.json" --benchmarks "$out/micro.json" --plots "$out"
} >"$out/report.md"
(cd "$out" && gnuplot plots.gp)
say "the report is $out/report.md, beside it are $(find "$out" -name '*.svg' | wc -l) plots"
