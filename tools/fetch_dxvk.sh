#!/usr/bin/env bash
# Fetches a second implementation of Direct3D 11, DXVK for Wine, into third_party/dxvk/, for tests only: one package of
# one version from the archive that apt already uses, of the release after this one, held against a known hash. Nothing of
# it is installed. Does nothing when it is there already.
#   tools/fetch_dxvk.sh
set -euo pipefail
# shellcheck source=tools/usage.sh
. "$(dirname "$0")/usage.sh"
cd "$(dirname "$0")/.."

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
# shellcheck disable=SC2016  # the names in there are apt's
archive=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE)' | awk '$2 !~ /-/ { print $1; exit }')
if [ -z "$archive" ]; then
  echo "apt knows no archive: is there a list of packages?" >&2
  exit 1
fi
mkdir -p "$work/lists/partial" "$work/cache/archives/partial"
chmod 755 "$work"
echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $archive $release main" >"$work/sources.list"
apt=(apt-get -qq -o "Dir::Etc::sourcelist=$work/sources.list" -o Dir::Etc::sourceparts=-
  -o "Dir::State::lists=$work/lists" -o "Dir::Cache=$work/cache" -o APT::Sandbox::User="$(id -un)")
"${apt[@]}" update
(cd "$work" && "${apt[@]}" download "$package")
deb=$(echo "$work"/*.deb)
if ! echo "$package_sha256  $deb" | sha256sum --check --status; then
  echo "$package is not the package it was: its hash differs" >&2
  exit 1
fi
dpkg-deb -x "$deb" "$work/unpacked"
mkdir -p "$folder"
for library in d3d11 dxgi; do
  cp "$work/unpacked/usr/lib/dxvk/wine64/$library.dll.so" "$folder/$library.dll"
done
echo "it is in $folder"
