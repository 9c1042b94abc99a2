#!/bin/sh
# Does tools/release.sh refuse a tree with changes? scripts_test.sh SOURCES
# It runs in a copy without a build, where there is nothing that it could disturb.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$1/tools" "$work"
git -C "$work" init -q
git -C "$work" add .
git -C "$work" -c user.name=Test -c user.email=test -c commit.gpgsign=false commit -qm first
echo "# changed" >>"$work/tools/lib.sh"
if output=$("$work/tools/release.sh" 2>&1); then
  echo "a tree with changes is released"
  exit 1
fi
case $output in
  *"not committed"*tools/lib.sh*) ;;
  *) echo "a tree with changes: $output"; exit 1 ;;
esac
