#!/bin/sh
# The scripts that make a release explain themselves, and refuse what is no release: scripts_test.sh SOURCES
# They run in a copy without a build, where there is nothing that they could disturb.
set -eu
sources=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  echo "$1"
  failures=1
}

git_here() {
  git -C "$work" -c user.name=Test -c user.email=test -c commit.gpgsign=false "$@" >/dev/null
}

cp -r "$sources/tools" "$work"
git_here init -q
git_here add .
git_here commit -m first

for script in build release symbolize; do
  output=$("$work/tools/$script.sh" --help 2>&1) || fail "$script.sh --help fails"
  case $output in
    *"tools/$script.sh"*) ;;
    *) fail "$script.sh --help does not show how it is called: $output" ;;
  esac
  case $output in
    *"set -euo"* | *shellcheck*) fail "$script.sh --help shows its code: $output" ;;
  esac
done
[ -z "$(git -C "$work" status --porcelain --ignored)" ] || fail "--help leaves files behind"

echo "# changed" >>"$work/tools/lib.sh"
output=$("$work/tools/release.sh" 2>&1) && fail "a tree with changes is released"
case $output in
  *"not committed"*tools/lib.sh*) ;;
  *) fail "a tree with changes: $output" ;;
esac
exit "$failures"
