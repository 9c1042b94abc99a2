# A session of the driver between stand-ins of the runtime and the companion; source it after lib.sh.
# shellcheck shell=bash disable=SC2154

# Without a thread per Direct3D device that spins while it waits: three of them starve a machine of two cores.
windows() {
  WINE_D3D_CONFIG=csmt=0x0 WINEPREFIX=$wine_prefix tools/wine.sh "$@"
}

# wait_for_line FILE TEXT SECONDS
wait_for_line() {
  local end=$((SECONDS + $3))
  until grep -qF "$2" "$1" 2>/dev/null; do
    if [ "$SECONDS" -ge "$end" ]; then
      echo "$1 says nothing of '$2' after $3 s" >&2
      return 1
    fi
    sleep 0.1
  done
}

# run_session FOLDER FRAMES: pictures, logs and figures go to FOLDER. Fails unless the companion reads FRAMES frames,
# each with a pose that it had sent. Goes on for twice as many, or for 150 s where drawing is slow.
run_session() {
  local out=$1 frames=$2 bench=build/mingw-release/bench companion failed=0
  rm -rf "$out"
  mkdir -p "$out"

  say "starting the companion"
  windows "$bench/companion_sim/Ombrel.exe" --until-disconnect --sweep-seconds 8 --out "$out" --save-every 60 \
    --require-frames "$frames" --require-matching "$frames" --summary "$out/companion.json" \
    --csv "$out/companion_frames.csv" --poses-csv "$out/companion_poses.csv" >"$out/companion.log" 2>&1 &
  companion=$!
  # The driver refuses to start while no companion runs.
  wait_for_line "$out/companion.log" "pipes open" 60

  # A smaller picture than the driver's default, since here the processor draws it, twice, and carries it across.
  say "starting the runtime with the driver in dist/ombrel, for $((2 * frames)) frames"
  windows "$bench/runtime_sim/runtime_sim.exe" --driver dist/ombrel --settings tools/demo_settings.json \
    --keep-devices --frames $((2 * frames)) --seconds 150 --require-frames "$frames" --summary "$out/runtime.json" \
    --driver-log "$out/driver.log" --csv "$out/runtime_frames.csv" --poses-csv "$out/runtime_poses.csv" || failed=1
  wait "$companion" || failed=1

  say "results, in $out"
  tail -n 1 "$out/companion.log"
  windows "$bench/runtime_sim/demo_report.exe" --json "$out/summary.json" \
    --companion-poses "$out/companion_poses.csv" --runtime-poses "$out/runtime_poses.csv" \
    --runtime-frames "$out/runtime_frames.csv" --companion-frames "$out/companion_frames.csv" || failed=1
  return "$failed"
}
