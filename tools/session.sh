# A session of the driver between stand-ins of the runtime and the companion; source it after lib.sh.
# shellcheck shell=bash disable=SC2154

# No thread per Direct3D device that spins while it waits: three of them starve a machine of two cores.
export WINE_D3D_CONFIG=csmt=0x0

wine_prefixes+=("$wine_prefix")

windows() {
  WINEPREFIX=$wine_prefix tools/wine.sh "$@"
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

# run_session MODE FOLDER FRAMES: the headset of tools/demo/MODE.json, for so many frames, or for 150 s where drawing is
# slow; pictures, logs and figures go to FOLDER. Fails unless the companion reads half of them, sees every look of the head
# and every input of a controller in the picture, and gets the haptic pulses. In direct mode each frame must come with a
# pose that was sent; a virtual display's have none beside them.
run_session() {
  local mode=$1 out=$2 frames=$3 bench=build/mingw-release/bench companion failed=0 matching=0
  [ "$mode" != direct ] || matching=$((frames / 2))
  rm -rf "$out"
  mkdir -p "$out"

  say "$mode mode: starting the companion"
  windows "$bench/companion_sim/Ombrel.exe" --until-disconnect --script tools/demo/script.json --out "$out" \
    --save-every 60 --require-frames $((frames / 2)) --require-matching "$matching" --require-named 12 \
    --require-haptics 4 --summary "$out/companion.json" --csv "$out/companion_frames.csv" \
    --poses-csv "$out/companion_poses.csv" >"$out/companion.log" 2>&1 &
  companion=$!
  # The driver refuses to start while no companion runs.
  wait_for_line "$out/companion.log" "pipes open" 60

  # A smaller picture than the driver's default, since here the processor draws it, twice, and carries it across.
  say "$mode mode: starting the runtime with the driver in dist/ombrel, for $frames frames"
  windows "$bench/runtime_sim/runtime_sim.exe" --driver dist/ombrel --settings "tools/demo/$mode.json" \
    --haptics tools/demo/haptics.json --keep-devices --frames "$frames" --seconds 150 \
    --require-frames $((frames / 2)) --summary "$out/runtime.json" --driver-log "$out/driver.log" \
    --record "$out/calls.jsonl" --csv "$out/runtime_frames.csv" --poses-csv "$out/runtime_poses.csv" || failed=1
  wait "$companion" || failed=1

  say "$mode mode: what the companion says, more is in $out"
  grep '^companion: ' "$out/companion.log" | tail -n 1
  return "$failed"
}

# report_sessions FOLDER: a line of figures for each of the two sessions in FOLDER/direct and FOLDER/virtual, and a page
# that shows both, FOLDER/report.html. Fails when one of its verdicts is not good.
report_sessions() {
  windows build/mingw-release/bench/runtime_sim/demo_report.exe --out "$1" \
    --template build/mingw-release/report/template.html \
    --session "Direct mode" "$1/direct" --session "Virtual display" "$1/virtual" \
    --fact "Driver" "dist/ombrel at commit $(git describe --always --dirty 2>/dev/null || echo unknown)" \
    --fact "System" "$(/usr/lib/wine/wine64 --version), a software rasterizer, $(nproc) processors"
}
