#!/usr/bin/env bash
# Fetches the chart library of the report's page into third_party/uplot/: three files out of one package of one version,
# held against a known hash. Nothing of the package is run. Does nothing when they are there already.
#   tools/fetch_uplot.sh
set -euo pipefail
# shellcheck source=tools/usage.sh
. "$(dirname "$0")/usage.sh"
cd "$(dirname "$0")/.."
# shellcheck source=tools/npm.sh
. tools/npm.sh

package=uplot@1.6.32
package_sha512=KIMVnG68zvu5XXUbC4LQEPnhwOxBuLyW1AHtpm6IKTXImkbLgkMy+jabjLgSLMasNuGGzQm/ep3tOkyTxpiQIw==
files=(package/dist/uPlot.iife.min.js package/dist/uPlot.min.css package/LICENSE)
folder=third_party/uplot

if [ -e "$folder/LICENSE" ]; then
  exit 0
fi

echo "fetching the chart library of the report's page ($package)"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fetch_package "$package" "$package_sha512" "$work" "${files[@]}"
mkdir -p "$folder"
for file in "${files[@]}"; do  # the licence last: it says that all are there
  mv "$work/$file" "$folder"
done
echo "it is in $folder"
