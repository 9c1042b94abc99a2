#!/usr/bin/env bash
# Builds the driver: tools/build.sh [--all]
# dist/ombrel/ is the folder that the runtime loads it from, dist/symbols/ has its symbols, and beside them are the zips.
# --all also makes the preview and dist/ombrel-selftest/, with which anybody tests the driver on a machine of theirs, and
# their zips.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

prepare "${build_packages[@]}"
if [ "${1:-}" = --all ]; then
  build mingw-release dist dist_all
  say "the driver is in dist/ombrel, its symbols are in dist/symbols, the rest is beside them"
else
  build mingw-release dist
  say "the driver is in dist/ombrel, its symbols are in dist/symbols"
fi
