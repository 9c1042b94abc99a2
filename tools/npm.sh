# One package of one version of npm's registry, held against its hash; source it. Nothing of a package is run.
# shellcheck shell=bash

# Hex, since that is what sha512sum reads; the package's hash is written as registries publish it.
has_sha512() {
  echo "$(base64 -d <<<"$2" | od -An -v -tx1 | tr -d ' \n')  $1" | sha512sum --check --status 2>/dev/null
}

# fetch_package PACKAGE@VERSION SHA512 FOLDER FILE...: those files of the package, in FOLDER/package.
fetch_package() {
  local archive
  npm pack --loglevel=error --ignore-scripts --pack-destination "$3" "$1" >/dev/null
  archive=$(echo "$3"/*.tgz)
  if ! has_sha512 "$archive" "$2"; then
    echo "$1 is not the package it was: its hash differs" >&2
    return 1
  fi
  tar -xzf "$archive" -C "$3" "${@:4}"
}
