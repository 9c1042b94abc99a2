#!/bin/sh
# Runs a Windows program under Wine with DXVK as its Direct3D 11, and fails if the program did without it:
#   tools/wine_dxvk.sh PREFIX DXVK_FOLDER PROGRAM [ARGUMENT...]
# The prefix is for this alone.
set -eu
# shellcheck source=tools/usage.sh
[ "${1:-}" != --help ] || . "$(dirname "$0")/usage.sh"
here=$(dirname "$0")
export WINEPREFIX="$1"
folder=$2
shift 2

system="$WINEPREFIX/drive_c/windows/system32"
if ! cmp -s "$folder/d3d11.dll" "$system/d3d11.dll" || ! cmp -s "$folder/dxgi.dll" "$system/dxgi.dll"; then
  "$here/wine.sh" --prefix "$WINEPREFIX" cmd.exe /c exit
  cp "$folder/d3d11.dll" "$folder/dxgi.dll" "$system/"
fi

logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
export WINEDLLOVERRIDES="mscoree,mshtml=;d3d11,dxgi=n"
export DXVK_LOG_LEVEL=info DXVK_LOG_PATH="$logs"
"$here/wine.sh" "$@" 2>/dev/null
if ! grep -qs 'DXVK: ' "$logs"/*.log; then
  echo "the program drew without DXVK" >&2
  exit 1
fi
