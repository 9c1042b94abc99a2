#!/bin/sh
# Runs a Windows program under Wine with shared textures supplied beneath it:
#   tools/wine_sharing.sh PREFIX LIBRARY PROGRAM [ARGUMENT...]
# LIBRARY is the d3d11.dll of bench/dropin. What else runs in the prefix has Wine's own Direct3D.
set -eu
# shellcheck source=tools/usage.sh
[ "${1:-}" != --help ] || . "$(dirname "$0")/usage.sh"
wine=$(dirname "$0")/wine.sh
export WINEPREFIX="$1"
library=$2
shift 2

# Wine takes its own d3d11.dll unless it is told otherwise; that one stays at hand for ours, by another name.
system="$WINEPREFIX/drive_c/windows/system32"
if ! cmp -s "$library" "$system/d3d11.dll"; then
  "$wine" cmd.exe /c exit
  ! grep -q 'Wine builtin DLL' "$system/d3d11.dll" ||
    cp --remove-destination "$system/d3d11.dll" "$system/ombrel_host_d3d11.dll"
  cp --remove-destination "$library" "$system/d3d11.dll"
fi
export WINEDLLOVERRIDES='mscoree,mshtml=;d3d11=n,b'
exec "$wine" "$@"
