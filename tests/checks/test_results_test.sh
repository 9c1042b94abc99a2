#!/bin/sh
# Shows how the tests' results are counted: test_results_test.sh AWK_PROGRAM
set -eu
program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

# expect NAME "passed failed skipped" LINE...: counts those lines of ctest's.
expect() {
  name=$1 expected=$2
  shift 2
  printf '%s\n' "$@" | awk -f "$program" -v counts="$work/counts" >/dev/null
  if [ "$(cat "$work/counts")" != "$expected" ]; then
    echo "$name: expected $expected, got $(cat "$work/counts")"
    failures=1
  fi
}

expect "single tests" "2 0 0" '1: [==========] Running 2 tests from 1 test suite.' '1: [       OK ] A.B (0 ms)' \
  '1: [       OK ] A.C (0 ms)' '1: [  PASSED  ] 2 tests.' '1/1 Test  #1: a_test ....   Passed    0.1 sec'
expect "a failed one" "1 1 0" '1: [==========] Running 2 tests from 1 test suite.' '1: [       OK ] A.B (0 ms)' \
  '1: [  FAILED  ] A.C (0 ms)' '1: [  PASSED  ] 1 test.' '1/1 Test  #1: a_test ....***Failed    0.1 sec'
expect "a crash" "1 1 0" '1: [==========] Running 2 tests from 1 test suite.' '1: [       OK ] A.B (0 ms)' \
  '1/1 Test  #1: a_test ....***Exception: SegFault    0.1 sec'
expect "a crash that ends with code 0" "1 1 0" '1: [==========] Running 2 tests from 1 test suite.' \
  '1: [       OK ] A.B (0 ms)' '1/1 Test  #1: a_test ....   Passed    0.1 sec'
expect "a failure that ends with code 0" "0 1 0" '1: [==========] Running 1 test from 1 test suite.' \
  '1: [  FAILED  ] A.C (0 ms)' '1: [  PASSED  ] 0 tests.' '1/1 Test  #1: a_test ....   Passed    0.1 sec'
expect "a script" "1 0 0" '1: all is well' '1/1 Test  #1: a_script ....   Passed    0.1 sec'
expect "one that is left out" "0 0 1" '1/1 Test  #1: a_script ....***Skipped    0.1 sec'
expect "a ctest that fails by itself" "1 1 0" '1/1 Test  #1: a_script ....   Passed    0.1 sec' 'ctest ended with 8'

[ "$failures" -eq 0 ] && echo "all are counted right"
