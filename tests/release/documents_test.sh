#!/bin/sh
# Is there every file that the documents link to, and each that CONTRIBUTING.md names? documents_test.sh SOURCES
set -eu
cd "$1"
missing=$(
  for page in ./*.md docs/*.md; do
    folder=$(dirname "$page")
    grep -oE '\]\([^)#]+' "$page" | cut -c 3- | grep -v '^https\?:' | while IFS= read -r target; do
      [ -e "$folder/$target" ] || echo "$page links to $target, which is not there"
    done
  done
  # Between backquotes, what has a slash in it is a path, but for what is built.
  tr '\140' '\n' <CONTRIBUTING.md | grep -xE '[a-z_]+/[A-Za-z0-9_./-]+' | grep -vE '^(dist|out|build)/' |
    while IFS= read -r path; do
      [ -e "$path" ] || echo "CONTRIBUTING.md names $path, which is not there"
    done
)
if [ -n "$missing" ]; then
  echo "$missing"
  exit 1
fi
