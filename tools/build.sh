#!/usr/bin/env bash
# Builds the driver: tools/build.sh
# dist/ombrel/ is the folder that the runtime loads it from, dist/symbols/ has its symbols, and beside them are the zips.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

prepare "${build_packages[@]}"
build mingw-release dist
say "the driver is in dist/ombrel, its symbols are in dist/symbols"
