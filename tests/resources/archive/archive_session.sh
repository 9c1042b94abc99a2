#!/bin/sh
# Unpacks the archive that players get and runs a short session with the driver in it:
#   archive_session.sh ARCHIVE WINE COMPANION RUNTIME
# WINE starts a Windows program. Fails unless the companion gets frames of the size that the archive's own settings say.
set -eu
archive=$1 wine=$2 companion=$3 runtime=$4
frames=5

# A folder with a blank and a letter beyond ASCII, as a player's may be.
work=$(mktemp -d)
place="$work/Spiele für VR"
mkdir "$place"
companion_process=
clean_up() {
  [ -z "$companion_process" ] || kill "$companion_process" 2>/dev/null || true
  rm -rf "$work"
}
trap clean_up EXIT

fail() {
  echo "$1"
  tail -n 40 "$work"/*.log 2>/dev/null || true
  exit 1
}

wait_for_line() {
  tries=0
  until grep -qF "$2" "$1" 2>/dev/null; do
    tries=$((tries + 1))
    [ "$tries" -lt 600 ] || fail "$1 says nothing of '$2'"
    sleep 0.1
  done
}

(cd "$place" && cmake -E tar xf "$archive")
[ -f "$place/ombrel/bin/win64/driver_ombrel.dll" ] || fail "there is no folder ombrel with a library in the archive"

cd "$place"
"$wine" "$companion" --until-disconnect --require-frames "$frames" --require-matching "$frames" \
  >"$work/companion.log" 2>&1 &
companion_process=$!
wait_for_line "$work/companion.log" "pipes open"
"$wine" "$runtime" --driver ombrel --frames $((4 * frames)) --seconds 60 --require-frames "$frames" \
  --driver-log driver.txt >"$work/runtime.log" 2>&1 || fail "the runtime is not content"
wait "$companion_process" || fail "the companion is not content"
companion_process=

grep -qF "driver_ombrel: Window: -1 -1 2560 1440" driver.txt || fail "the archive's settings were not read"
tail -n 1 "$work/runtime.log"
tail -n 1 "$work/companion.log"
