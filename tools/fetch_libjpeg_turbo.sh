#!/usr/bin/env bash
# Fetches the sources of libjpeg-turbo into third_party/libjpeg-turbo/: the upstream archive of Debian's source package,
# from the archive that apt already uses, held against a known hash. Nothing of it is run or installed. Does nothing when
# the sources are there already.
#   tools/fetch_libjpeg_turbo.sh
set -euo pipefail
# shellcheck source=tools/usage.sh
. "$(dirname "$0")/usage.sh"
cd "$(dirname "$0")/.."

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
# shellcheck disable=SC2016  # the names in there are apt's
mirror=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE)' | awk '$2 !~ /-/ { print $1; exit }')
if [ -z "$mirror" ]; then
  echo "apt knows no archive: is there a list of packages?" >&2
  exit 1
fi
mkdir -p "$work/lists/partial" "$work/cache/archives/partial"
chmod 755 "$work"
echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror $release main" >"$work/sources.list"
apt=(apt-get -qq -o "Dir::Etc::sourcelist=$work/sources.list" -o Dir::Etc::sourceparts=-
  -o "Dir::State::lists=$work/lists" -o "Dir::Cache=$work/cache" -o APT::Sandbox::User="$(id -un)")
"${apt[@]}" update
(cd "$work" && "${apt[@]}" source --download-only "$package")
archive=$(echo "$work"/*.orig.tar.gz)
if ! echo "$archive_sha256  $archive" | sha256sum --check --status; then
  echo "$package has not the sources that it had: their hash differs" >&2
  exit 1
fi
rm -rf "$folder"
mkdir -p "$folder"
tar -xzf "$archive" -C "$folder" --strip-components=1
echo "$archive_sha256" >"$folder/.fetched"
echo "they are in $folder"
