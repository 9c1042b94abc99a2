# One package of one version from the archive that apt already uses, held against its hash; source it. Nothing of it is
# run or installed.
# shellcheck shell=bash

# fetch_from_debian FOLDER KIND RELEASE SHA256 FILE COMMAND...: has apt-get run COMMAND in FOLDER, with a list of that KIND
# (deb or deb-src) for that release alone. The file that matches FILE there must have the hash.
fetch_from_debian() {
  local folder=$1 kind=$2 release=$3 sha256=$4 file=$5 archive apt
  shift 5
  # shellcheck disable=SC2016  # the names in there are apt's
  archive=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE)' | awk '$2 !~ /-/ { print $1; exit }')
  if [ -z "$archive" ]; then
    echo "apt knows no archive: is there a list of packages?" >&2
    return 1
  fi
  mkdir -p "$folder/lists/partial" "$folder/cache/archives/partial"
  chmod 755 "$folder"
  echo "$kind [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $archive $release main" >"$folder/sources.list"
  apt=(apt-get -qq -o "Dir::Etc::sourcelist=$folder/sources.list" -o Dir::Etc::sourceparts=-
    -o "Dir::State::lists=$folder/lists" -o "Dir::Cache=$folder/cache" -o APT::Sandbox::User="$(id -un)")
  "${apt[@]}" update
  (cd "$folder" && "${apt[@]}" "$@")
  # shellcheck disable=SC2086,SC2116  # a pattern
  file=$(echo "$folder"/$file)
  if ! echo "$sha256  $file" | sha256sum --check --status; then
    echo "$(basename "$file") is not what it was: its hash differs" >&2
    return 1
  fi
}
