#!/usr/bin/env bash
# Builds the driver: dist/ombrel/ is the folder that the runtime loads it from.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

prepare "${build_packages[@]}"
build mingw-release dist
say "the driver is in dist/ombrel, its symbols are in dist/symbols"
