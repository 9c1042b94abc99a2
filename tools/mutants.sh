#!/usr/bin/env bash
# Puts mechanical faults into a scratch copy of the driver, one at a time, and tells which of them no test notices:
#   tools/mutants.sh [--seed N] [--count N] [--windows] [--again] [--list]
# A line for each mutant: caught, survived or does not compile, in which case another one is drawn. The native tests are
# tried first, and those under Wine with what they let pass. What is known stays in out/mutants/, so that a run that was
# interrupted goes on. Mutants that change nothing anybody could notice are listed in
# tools/mutants/equivalent.toml, with the reason.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

run() {
  python3 -B tools/mutants/mutants.py "$@"
}

need python3
for option in "$@"; do
  case $option in
    -h | --help | --list) run "$@"; exit ;;
  esac
done
prepare "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}"
start_display
run "$@"
