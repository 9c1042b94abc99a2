#!/bin/sh
# Is the library of the commit that is checked out? commit_test.sh DLL SOURCES VERSION
# Files that were edited since the last build say nothing of it, so ".dirty" may have come or gone.
set -eu
dll=$1 sources=$2 version=$3
check=$(dirname "$0")/check_commit.sh
expected=$version
if [ -e "$sources/.git" ]; then
  expected=$version+$(git -C "$sources" rev-parse HEAD | cut -c 1-12)
fi
sh "$check" "$dll" "$expected.dirty" || sh "$check" "$dll" "$expected"
if sh "$check" "$dll" "$version+0123456789ab" >/dev/null; then
  echo "any commit is taken for the right one"
  exit 1
fi
