#!/usr/bin/env bash
# Fetches a second implementation of Direct3D 11, DXVK for Wine, into third_party/dxvk/, for tests only: one package of
# one version from the archive that apt already uses, of the release after this one, held against a known hash. Nothing of
# it is installed. Does nothing when it is there already.
#   tools/fetch_dxvk.sh
set -euo pipefail
# shellcheck source=tools/usage.sh
. "$(dirname "$0")/usage.sh"
cd "$(dirname "$0")/.."
# shellcheck source=tools/debian.sh
. tools/debian.sh

release=trixie
package=dxvk-wine64=2.6+ds-1
package_sha256=815dc6d20536f60a60e3e8d8696ce06560f52e4afe073ad11bd612090231b630
folder=third_party/dxvk

if [ -e "$folder/d3d11.dll" ] && [ -e "$folder/dxgi.dll" ]; then
  exit 0
fi

echo "fetching a second Direct3D 11 ($package)"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fetch_from_debian "$work" deb "$release" "$package_sha256" '*.deb' download "$package"
dpkg-deb -x "$work"/*.deb "$work/unpacked"
mkdir -p "$folder"
for library in d3d11 dxgi; do
  cp "$work/unpacked/usr/lib/dxvk/wine64/$library.dll.so" "$folder/$library.dll"
done
echo "it is in $folder"
