#!/bin/sh
# Reads a built DLL back with binutils: check_dll.sh exports|imports|flags|size|version DLL [VERSION]
# OBJDUMP and WINDRES name the programs. Prints what is wrong and fails.
set -eu
what=$1
dll=$2
version=${3:-}
headers=$("$OBJDUMP" -p "$dll")

fail() {
  echo "$dll: $1"
  exit 1
}

check_exports() {
  # Binutils write a name as "[   0] Name", later versions as "[   0] +base[   1]  0000 Name".
  names=$(echo "$headers" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^.*\[ *[0-9]*\].* \([^ ]*\)$/\1/p')
  [ "$names" = HmdDriverFactory ] || fail "exports are not HmdDriverFactory alone: $(echo "$names" | tr '\n' ' ')"
  addresses=$(echo "$headers" | grep -cE 'Export RVA|Forwarder RVA' || true)
  [ "$addresses" = 1 ] || fail "exports $addresses addresses, some without a name"
}

check_imports() {
  allowed='KERNEL32|msvcrt|ntdll|ADVAPI32|USER32|WINMM|d3d11|dxgi|api-ms-win-core-synch-[a-z0-9-]*'
  libraries=$(echo "$headers" | sed -n 's/^.*DLL Name: //p')
  [ -n "$libraries" ] || fail "imports nothing"
  foreign=$(echo "$libraries" | grep -viE "^($allowed)\.dll$" || true)
  [ -z "$foreign" ] || fail "imports from $(echo "$foreign" | tr '\n' ' ')"
  # Tools take the device from here, so it must be an ordinary import of d3d11.dll.
  echo "$headers" | sed -n '/DLL Name: d3d11\.dll/,/^$/p' | grep -qw D3D11CreateDevice ||
    fail "D3D11CreateDevice is not imported from d3d11.dll"
  echo "$headers" | grep -qE '^Entry d 0+ 0+ Delay Import' || fail "has delayed imports"
}

check_flags() {
  for flag in DYNAMIC_BASE HIGH_ENTROPY_VA NX_COMPAT; do
    echo "$headers" | grep -qE "^[[:space:]]+$flag\$" || fail "$flag is not set"
  done
  # Without relocations a DLL cannot be moved, whatever its flags say.
  echo "$headers" | grep -qE '^Entry 5 0*[1-9a-f][0-9a-f]* 0*[1-9a-f][0-9a-f]* Base Relocation' ||
    fail "has no base relocations"
}

check_version() {
  resources=$("$WINDRES" -J coff -i "$dll" -O rc 2>/dev/null) || fail "has no resources"
  echo "$resources" | grep -qF "FILEVERSION $(echo "$version" | sed 's/\./, /g'), 0" || fail "FILEVERSION is not $version"
  # A commit may stand behind it.
  echo "$resources" | grep -qE "VALUE \"ProductVersion\", \"$version(\+[0-9a-f]{12}(\.dirty)?)?\"" ||
    fail "ProductVersion is not $version"
  echo "$resources" | grep -qF 'VALUE "OriginalFilename", "driver_ombrel.dll"' || fail "OriginalFilename is wrong"
}

check_size() {
  bytes=$(wc -c <"$dll")
  [ "$bytes" -le 1048576 ] || fail "is $bytes bytes, more than 1 MiB"
  sections=$("$OBJDUMP" -h "$dll" | awk '$1 ~ /^[0-9]+$/ {print $2}')
  debug=$(echo "$sections" | grep -vx '\.gnu_debuglink' | grep '^\.debug' || true)
  [ -z "$debug" ] || fail "carries symbols for debugging: $(echo "$debug" | tr '\n' ' ')"
  echo "$sections" | grep -qx '\.gnu_debuglink' || fail "does not say where its symbols are"
  symbols=$(dirname "$dll")/../../../symbols/$(basename "$dll").debug
  "$OBJDUMP" -h "$symbols" | grep -q '\.debug_line' || fail "has no symbols beside it"
}

case $what in
  exports | imports | flags | size | version) "check_$what" ;;
  *) fail "unknown check $what" ;;
esac
echo "$dll: $what are right"
