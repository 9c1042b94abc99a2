#!/usr/bin/env bash
# Fetches the driver interface header into third_party/openvr/: one header out of one package of one version,
# both held against known hashes. Nothing of the package is run. Does nothing when the header is there already.
#   tools/fetch_openvr.sh
set -euo pipefail
# shellcheck source=tools/usage.sh
. "$(dirname "$0")/usage.sh"
cd "$(dirname "$0")/.."
# shellcheck source=tools/npm.sh
. tools/npm.sh

package=native-openvr-deps@0.0.17
package_sha512=fjFo4yqeiXSEOCTe2wlxpjHbHCj/3fkQV2/HIiwc5MpgFnBsCLSU4iEte6KNgqrzMkwTfTPs8IkS62Ta0L08qA==
header_sha256=c232b82f43923ef0b0fc10eac472f6bc2cb438702c2e467a3419f9e07ab99e11
header=third_party/openvr/openvr_driver.h

has_sha256() {
  echo "$2  $1" | sha256sum --check --status 2>/dev/null
}

if has_sha256 "$header" "$header_sha256"; then
  exit 0
fi

echo "fetching the driver interface header ($package)"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fetch_package "$package" "$package_sha512" "$work" package/lib.zip
unzip -q -j "$work/package/lib.zip" headers/openvr_driver.h -d "$work"
if ! has_sha256 "$work/openvr_driver.h" "$header_sha256"; then
  echo "the header in $package is not the one it was: its hash differs" >&2
  exit 1
fi
mkdir -p "$(dirname "$header")"
mv "$work/openvr_driver.h" "$header"
echo "the header is in $header"
