#!/usr/bin/env bash
# Fuzzes the driver with what a companion may send, for a minute or for as many seconds as are named, and tells how much
# of it was run: tools/fuzz.sh [SECONDS]
# Every stream is also judged by the protocol's page. What the fuzzer learns stays in build/host-fuzz/learnt/ for the
# next run; a stream that breaks something lies in build/host-fuzz/findings/, and belongs into tests/fuzz/corpus/ once it
# is understood.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

seconds=${1:-60}
folder=build/host-fuzz
fuzzer=$folder/tests/fuzz/fuzz_companion

# Allocations are many and small: with whole call stacks for each, half of the time goes there.
export ASAN_OPTIONS=malloc_context_size=4

# lines_run NAME CORPUS...: how many lines the streams run of what a companion's bytes can reach, which the base station
# is not.
lines_run() {
  local name=$1
  shift
  LLVM_PROFILE_FILE=$folder/coverage.raw "$fuzzer" -runs=0 "$@" >/dev/null 2>&1
  llvm-profdata merge -sparse "$folder/coverage.raw" -o "$folder/coverage.profile"
  llvm-cov report "$fuzzer" -instr-profile="$folder/coverage.profile" -ignore-filename-regex=fake_sensor \
    link devices driver/server_driver_ombrel.cpp >"$folder/coverage-$name.txt"
  awk -v name="$name" '
    # Columns: file, then count, missed and percentage of regions, functions and lines.
    $1 ~ /\.(cpp|h)$/ { total += $8; missed += $9 }
    END { printf "%s: %d of %d lines of link/, devices/ and the provider run (%.1f %%)\n",
                 name, total - missed, total, 100 * (total - missed) / total }' "$folder/coverage-$name.txt"
}

prepare "${build_packages[@]}" "${fuzz_packages[@]}"
build host-fuzz fuzz_companion
mkdir -p "$folder/learnt" "$folder/findings"

say "fuzzing for $seconds seconds"
code=0
LLVM_PROFILE_FILE=/dev/null "$fuzzer" -max_total_time="$seconds" -max_len=2048 -dict=tests/fuzz/companion.dict \
  -print_final_stats=1 -artifact_prefix="$folder/findings/" "$folder/learnt" tests/fuzz/corpus \
  >"$folder/fuzz.log" 2>&1 || code=$?
if [ "$code" -ne 0 ]; then
  tail -n 40 "$folder/fuzz.log"
  echo "the fuzzer found something: $(tail -n 1 "$folder/fuzz.log")"
  exit 1
fi
awk '/number_of_executed_units/ { runs = $2 } /average_exec_per_sec/ { rate = $2 }
  END { printf "%d streams, %d a second, nothing found\n", runs, rate }' "$folder/fuzz.log"
lines_run corpus tests/fuzz/corpus
lines_run corpus-and-learnt tests/fuzz/corpus "$folder/learnt"
echo "by files: $folder/coverage-corpus-and-learnt.txt"
