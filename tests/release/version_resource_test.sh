#!/bin/sh
# What the version resource says of the commit: version_resource_test.sh SOURCES
set -eu
sources=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

git_here() {
  git -C "$work" -c user.name=Test -c user.email=test -c commit.gpgsign=false "$@" >/dev/null
}

# expect CASE PATTERN: of the product version.
expect() {
  cmake "-DSOURCE=$work" -DVERSION=1.2.3 -DDESCRIPTION=Test "-DRESOURCE=$work/build/test.rc" \
    -P "$sources/cmake/write_version_resource.cmake"
  if ! grep -qE "VALUE \"ProductVersion\", \"$2\"" "$work/build/test.rc"; then
    echo "$1: $(grep ProductVersion "$work/build/test.rc")"
    failures=1
  fi
}

mkdir -p "$work/resources"
cp "$sources/resources/driver_ombrel.rc.in" "$work/resources"
echo /build/ >"$work/.gitignore"

expect "sources without a repository" '1\.2\.3'
grep -qx 'FILEVERSION 1, 2, 3, 0' "$work/build/test.rc" || { echo "FILEVERSION is not 1.2.3.0"; failures=1; }

git_here init -q
git_here add .
git_here commit -m first
commit=$(git -C "$work" rev-parse HEAD | cut -c 1-12)
git_here tag -m release 9.9.9
expect "a commit, tagged or not" "1\\.2\\.3\\+$commit"

touch -d 2000-01-01 "$work/build/test.rc"
expect "the same commit" "1\\.2\\.3\\+$commit"
if [ -n "$(find "$work/build/test.rc" -newermt 2001-01-01)" ]; then
  echo "the file is written although nothing has changed"
  failures=1
fi

echo change >>"$work/.gitignore"
expect "a file that differs" "1\\.2\\.3\\+$commit\\.dirty"

git_here commit -a -m second
expect "the next commit" "1\\.2\\.3\\+$(git -C "$work" rev-parse HEAD | cut -c 1-12)"
exit "$failures"
