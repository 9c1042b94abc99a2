#!/usr/bin/env bash
# Fetches the sources of libjpeg-turbo into third_party/libjpeg-turbo/: the upstream archive of Debian's source package,
# from the archive that apt already uses, held against a known hash. Nothing of it is run or installed. Does nothing when
# the sources are there already.
#   tools/fetch_libjpeg_turbo.sh
set -euo pipefail
# shellcheck source=tools/usage.sh
. "$(dirname "$0")/usage.sh"
cd "$(dirname "$0")/.."
# shellcheck source=tools/debian.sh
. tools/debian.sh

release=bookworm
package=libjpeg-turbo=1:2.1.5-2
archive_sha256=254f3642b04e309fee775123133c6464181addc150499561020312ec61c1bf7c
folder=third_party/libjpeg-turbo

if [ "$(cat "$folder/.fetched" 2>/dev/null)" = "$archive_sha256" ]; then
  exit 0
fi

echo "fetching the sources of libjpeg-turbo ($package)"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fetch_from_debian "$work" deb-src "$release" "$archive_sha256" '*.orig.tar.gz' source --download-only "$package"
rm -rf "$folder"
mkdir -p "$folder"
tar -xzf "$work"/*.orig.tar.gz -C "$folder" --strip-components=1
echo "$archive_sha256" >"$folder/.fetched"
echo "they are in $folder"
