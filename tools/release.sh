#!/usr/bin/env bash
# Makes what is published of the commit that is checked out: tools/release.sh [--twice]
# out/release/ then holds the zips of the driver, its symbols, the preview and the self-test, and SHA256SUMS.
# Refuses a tree with changes. The same commit gives the same bytes as long as the compiler is the same; --twice builds in
# two folders and compares.
set -euo pipefail
# shellcheck source=tools/lib.sh
. "$(dirname "$0")/lib.sh"

out=out/release
umask 022  # zips hold permissions

if [ -n "$(git status --porcelain)" ]; then
  echo "there are changes that are not committed; a release is of a commit" >&2
  git status --short >&2
  exit 1
fi
commit=$(git describe --always --exclude='*' --abbrev=12)

# build_from_nothing FOLDER: what is published alone, in a clone, so that no edit and no file that git ignores goes in;
# with the commit's time instead of the clock's.
build_from_nothing() {
  local fetched=$PWD/third_party
  rm -rf "$1"
  git clone --quiet --shared --no-checkout . "$1"
  git -C "$1" checkout --quiet --detach "$commit"
  SOURCE_DATE_EPOCH=$(git -C "$1" log -1 --format=%ct)
  export SOURCE_DATE_EPOCH
  say "building $commit in $1"
  (
    cd "$1"
    cmake --preset mingw-release "-DOMBREL_OPENVR_DIR=$fetched/openvr" "-DOMBREL_UPLOT_DIR=$fetched/uplot" \
      "-DOMBREL_LIBJPEG_TURBO_DIR=$fetched/libjpeg-turbo" -DOMBREL_BUILD_TESTS=OFF -Wno-dev --log-level=WARNING
    cmake --build --preset mingw-release --target dist dist_all
    WINEPREFIX=$PWD/build/mingw-release/wine /usr/lib/wine/wineserver -k || true
  )
}

# check DLL: what the tests check of the library that they build, for this one.
check() {
  local version what
  version=$(sed -n 's/^project(ombrel VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  export OBJDUMP=x86_64-w64-mingw32-objdump WINDRES=x86_64-w64-mingw32-windres
  for what in exports imports flags size version; do
    sh tests/checks/check_dll.sh "$what" "$1" "$version"
  done
  sh tests/release/check_commit.sh "$1" "$version+$commit"
}

prepare "${build_packages[@]}"
build_from_nothing build/release
check build/release/dist/ombrel/bin/win64/driver_ombrel.dll
rm -rf "$out"
mkdir -p "$out"
cp build/release/dist/*.zip "$out"
(cd "$out" && sha256sum -- *.zip >SHA256SUMS)
if [ "${1:-}" = --twice ]; then
  build_from_nothing build/release_again
  (cd build/release_again/dist && sha256sum --check "$OLDPWD/$out/SHA256SUMS")
fi
say "the release of $commit is in $out"
cat "$out/SHA256SUMS"
