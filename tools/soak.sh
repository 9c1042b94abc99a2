#!/usr/bin/env bash
# Plays the long form of all scenarios, or of those named, in an hour at most: faults, long sessions, and what grows.
#   tools/soak.sh [SCENARIO...]
# The report is then out/soak/report.md. Each scenario has a process of its own, so that a crash is one failure.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

out=out/soak
bench=$PWD/build/mingw-release/bench/scenarios
limit_s=$((60 * 60))
passed=0 failed=0 skipped=0

# Frames are drawn by the processor: without Wine's spinning threads there is time for 100,000 of them, and memory stays
# as it is between two of them, so that small leaks show. Not so where devices are made and destroyed again and again.
environment_of() {
  case $1 in
    growth_frames | growth_reconnects | growth_control) echo WINE_D3D_CONFIG=csmt=0x0 ;;
    *) echo OMBREL_SOAK=1 ;;
  esac
}

# play NAME SECONDS: keeps what the scenario prints. Fails unless it says that it passed: a program that somebody else ended
# may still end with 0.
play() {
  env "$(environment_of "$1")" WINEPREFIX="$wine_prefix" timeout --kill-after=10 "$2" tools/wine.sh \
    "$bench/scenarios.exe" --long --driver "Z:$PWD/dist/ombrel/bin/win64/driver_ombrel.dll" \
    --companion "Z:$bench/companion/Ombrel.exe" --calls "Z:$PWD/$out/calls.csv" "$1" >"$out/$1.log" 2>&1 &&
    grep -q "^PASS  $1 " "$out/$1.log"
}

# The longest times of all scenarios, in the order in which the calls are listed.
print_calls() {
  echo '| call | may wait, ms | worst seen, ms | calls |'
  echo '| --- | --- | --- | --- |'
  awk -F, '!($1 in worst) { order[++n] = $1 }
    { waits[$1] = $2; calls[$1] += $5; if ($4 + 0 >= worst[$1] + 0) worst[$1] = $4 }
    END { for (i = 1; i <= n; i++) printf "| %s | %s | %s | %d |\n", order[i], waits[order[i]], worst[order[i]],
          calls[order[i]] }' "$out/calls.csv"
}

prepare "${build_packages[@]}" "${display_packages[@]}"
build mingw-release scenarios dist
start_display
will_test "$PWD/build/mingw-release"
rm -rf "$out"
mkdir -p "$out"
: >"$out/calls.csv"
if [ $# -gt 0 ]; then
  names=("$@")
else
  WINEPREFIX=$wine_prefix tools/wine.sh "$bench/scenarios.exe" --list | tr -d '\r' >"$out/names"
  mapfile -t names <"$out/names"
fi

{
  echo "# Soak, $(date -u +%Y-%m-%d), $(git rev-parse --short HEAD 2>/dev/null || echo unknown)"
  printf '\n| scenario | result | figures |\n| --- | --- | --- |\n'
} >"$out/report.md"
for name in "${names[@]}"; do
  left=$((limit_s - SECONDS))
  if [ "$left" -lt 60 ]; then
    skipped=$((skipped + 1))
    echo "| $name | skipped | the hour is over |" >>"$out/report.md"
    continue
  fi
  say "$name"
  if play "$name" "$left"; then
    passed=$((passed + 1)) result=passed
  else
    failed=$((failed + 1)) result=FAILED
  fi
  figures=$(sed -n "s/^\(PASS\|FAIL\)  $name //p" "$out/$name.log" | tr -d '\r')
  echo "${result}: ${figures:-no figures: see $out/$name.log}"
  grep -E '^ +(failed|skipped):' "$out/$name.log" || true
  echo "| $name | $result | ${figures:-none, see $name.log} |" >>"$out/report.md"
done

{
  printf '\n## Calls into the driver\n\n'
  print_calls
  printf '\n## Not played\n\n'
  grep -h '^ *skipped:' "$out"/*.log || echo "Every check of the scenarios above was made, but for those marked skipped."
  printf '\n%d passed, %d failed, %d skipped\n' "$passed" "$failed" "$skipped"
} >>"$out/report.md"
say "the report is $out/report.md"
echo "$passed passed, $failed failed, $skipped skipped"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
