# Shared by the scripts of this folder, which source it: set-up, building, and what Wine needs.
# shellcheck shell=bash disable=SC2034

# shellcheck source=tools/usage.sh
. "$(dirname "${BASH_SOURCE[0]}")/usage.sh"
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

build_packages=(cmake ninja-build g++-mingw-w64-x86-64-posix wine64
  nlohmann-json3-dev libcli11-dev libstb-dev libboost-dev nasm googletest python3)
display_packages=(xvfb libgl1 libgl1-mesa-dri libglx-mesa0)
fuzz_packages=(g++ clang libclang-rt-dev llvm)
msvc_packages=(clang-19 libc++-19-dev libwine-dev)
test_packages=(mesa-vulkan-drivers libvulkan1 "${fuzz_packages[@]}" "${msvc_packages[@]}" vkd3d-compiler spirv-tools
  python3-jsonschema python3-pil python3-pytest python3-selenium chromium chromium-driver)

say() {
  printf '\n== %s\n' "$*"
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

is_installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# need PACKAGE...: installs what is missing of Debian's packages, and asks nothing of the network if nothing is.
need() {
  local missing=() package
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  if [ ${#missing[@]} -eq 0 ]; then
    return
  fi
  say "installing ${missing[*]}"
  as_root apt-get update -qq
  # Hundreds of small packages: dpkg would wait for the disk after each of their files.
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
    -o Dpkg::Options::=--force-unsafe-io "${missing[@]}" | sed -nu 's/^Setting up \([^ ]*\).*/  \1/p'
}

# prepare PACKAGE...: the packages, the driver interface header, the report's chart library, and the tools that fetch both
# while they are not here.
prepare() {
  local packages=("$@")
  if [ ! -e third_party/openvr/openvr_driver.h ] || [ ! -e third_party/uplot/LICENSE ]; then
    command -v npm >/dev/null || packages+=(npm ca-certificates)
    command -v unzip >/dev/null || packages+=(unzip)
  fi
  need "${packages[@]}"
  tools/fetch_openvr.sh
  tools/fetch_libjpeg_turbo.sh
  tools/fetch_uplot.sh
}

# build PRESET [TARGET...]
build() {
  local preset=$1
  shift
  say "building $preset ${*:-everything}"
  cmake --preset "$preset" -Wno-dev --log-level=WARNING
  cmake --build --preset "$preset" ${1:+--target "$@"}
}

wine_prefix=$PWD/build/mingw-release/wine
wine_prefixes=() # those whose programs this script starts, and stops at its end: others may be somebody else's
display_pid=

# will_test BUILD: ctest gives each kind of test a prefix of its own.
will_test() {
  wine_prefixes=("$1"/wine{,_gpu,_dxvk,_scenarios,_companion})
}

# One X server for the whole run of a script; Wine's Direct3D draws through its OpenGL.
start_display() {
  local pipe number
  pipe=$(mktemp -u)
  mkfifo "$pipe"
  Xvfb -displayfd 3 -screen 0 1280x720x24 -nolisten tcp 3>"$pipe" >/dev/null 2>&1 &
  display_pid=$!
  read -r number <"$pipe" || true
  rm "$pipe"
  if [ -z "$number" ]; then
    echo "no display: Xvfb did not start" >&2
    exit 1
  fi
  export DISPLAY=:$number
}

stop_what_was_started() {
  local prefix
  for prefix in "${wine_prefixes[@]}"; do
    if [ -d "$prefix" ]; then
      WINEPREFIX=$prefix /usr/lib/wine/wineserver -k 2>/dev/null || true
    fi
  done
  if [ -n "$display_pid" ]; then
    kill "$display_pid" || true
  fi
}
trap stop_what_was_started EXIT
trap 'exit 130' INT TERM
