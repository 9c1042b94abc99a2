#!/bin/sh
# Shows that the header of another SDK is refused when a build is configured: openvr_versions_test.sh MODULE FOLDER
# MODULE is the CMake file that takes the header in, FOLDER has the right one.
set -eu
original=$2/openvr_driver.h
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

mkdir "$work/headers"
printf 'cmake_minimum_required(VERSION 3.25)\nproject(versions NONE)\ninclude("%s")\n' "$1" >"$work/CMakeLists.txt"

# expect NAME CODE TEXT CHANGE: configures with the header as sed's CHANGE leaves it.
expect() {
  sed "$4" "$original" >"$work/headers/openvr_driver.h"
  output=$(cmake -G Ninja -S "$work" -B "$work/build" "-DOMBREL_OPENVR_DIR=$work" 2>&1) && code=0 || code=$?
  [ "$code" -eq 0 ] || code=1
  case $output in
    *"$3"*) [ "$code" -eq "$2" ] && return ;;
  esac
  echo "$1: expected '$3', got '$output' (exit $code)"
  failures=1
}

expect "the header as it is" 0 "Configuring done" ''
expect "a later version" 1 "IVRSettings_002 expected, IVRSettings_003 found" 's/IVRSettings_002/IVRSettings_003/'
expect "an interface that is not there" 1 "IVRVirtualDisplay_002 expected, none found" '/IVRVirtualDisplay_Version = /d'
expect "the second of two" 1 "IVRDriverInput_001 expected, IVRDriverInput_003 found" \
  's/IVRSettings_002/IVRSettings_003/; s/IVRDriverInput_001/IVRDriverInput_003/'
expect "an interface that the driver has no use for" 0 "Configuring done" 's/IVRIOBuffer_001/IVRIOBuffer_002/'

[ "$failures" -eq 0 ] && echo "every other version is refused"
