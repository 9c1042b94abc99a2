#!/bin/sh
# Runs a Windows program under Wine, in a prefix that is made when it is first needed:
#   tools/wine.sh [--prefix FOLDER] PROGRAM [ARGUMENT...]
# Without --prefix, WINEPREFIX names the prefix.
set -eu
# shellcheck source=tools/usage.sh
[ "${1:-}" != --help ] || . "$(dirname "$0")/usage.sh"

if [ "$1" = --prefix ]; then
  WINEPREFIX=$2
  shift 2
fi
: "${WINEPREFIX:?name a Wine prefix with --prefix or WINEPREFIX}"
mkdir -p "$WINEPREFIX"
WINEPREFIX=$(cd "$WINEPREFIX" && pwd)
export WINEPREFIX
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"  # asks for no downloads
export WINEDEBUG="${WINEDEBUG:--all}"
wine=/usr/lib/wine/wine64

# Wine's services keep the output of whatever starts them open for two seconds after the last program ended,
# and with it a caller that reads that output to its end. So something silent starts them.
silently() {
  "$wine" "$@" </dev/null >/dev/null 2>&1 9>&- || {
    echo "Wine does not start in $WINEPREFIX" >&2
    exit 1
  }
}

{
  flock 9
  if [ ! -e "$WINEPREFIX/.made" ]; then
    echo "making a Wine prefix in $WINEPREFIX (about 10 s)" >&2
    silently wineboot.exe -i
    # A crash prints a backtrace and ends the program; a dialog would wait for someone who is not there.
    silently reg.exe add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
    touch "$WINEPREFIX/.made"
  fi
  silently wineboot.exe
} 9>"$WINEPREFIX/.lock"

exec "$wine" "$@"
