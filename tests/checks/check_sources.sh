#!/bin/sh
# Holds the sources against the rules of the architecture: check_sources.sh ROOT
# Prints one line for each breach and fails if there is any.
set -eu
cd "$1"

driver_folders="platform driver/context link shaders render devices hmd driver"
breaches=$(mktemp)
trap 'rm -f "$breaches"' EXIT

# C++ files of a folder; those of driver/context are not those of driver.
files_of() {
  [ -d "$1" ] || return 0
  if [ "$1" = driver ]; then
    find driver -path driver/context -prune -o -type f \( -name '*.h' -o -name '*.cpp' \) -print
  else
    find "$1" -type f \( -name '*.h' -o -name '*.cpp' \)
  fi
}

driver_files() {
  for folder in $driver_folders; do files_of "$folder"; done
}

# report FILE MESSAGE: puts both before each line that comes in as NUMBER:TEXT.
report() {
  while IFS= read -r line; do
    echo "$1:${line%%:*}: $2: ${line#*:}" >>"$breaches"
  done
}

# forbid FILE MESSAGE PATTERN
forbid() {
  grep -nE "$3" "$1" | report "$1" "$2" || true
}

includes_of() {
  echo "^[[:space:]]*#[[:space:]]*include[[:space:]]*[<\"]($1)"
}

# Bench programs and the companions' kit read the protocol document, so that two ends cannot share one mistake. The kit is
# complete without the bench.
check_bench() {
  forbidden=$(for name in $driver_folders; do printf '%s/|' "$(basename "$name")"; done)
  for folder in bench companion; do
    for file in $(files_of "$folder"); do
      forbid "$file" "$folder includes the driver" "$(includes_of "${forbidden%|}")"
    done
  done
  benches=$(for path in bench/*/include/*/; do printf '%s/|' "$(basename "$path")"; done)
  for file in $(files_of companion/include) $(files_of companion/library); do
    forbid "$file" "the kit includes the bench" "$(includes_of "${benches%|}")"
  done
  for file in $(driver_files); do
    forbid "$file" "the driver includes the companion" "$(includes_of 'companion/|ombrel/')"
  done
}

# Windows and Direct3D stay in the files named after them, conditional compilation in platform/.
check_adapters() {
  windows='windows\.h|winsock|ws2|d3d|dxgi|wrl|tlhelp32\.h|timeapi\.h|mmsystem\.h|psapi\.h|process\.h'
  for file in $(driver_files); do
    case $file in
      *_win32.* | *_d3d11.*) ;;
      *) forbid "$file" "system header outside _win32 and _d3d11 files" "$(includes_of "$windows")" ;;
    esac
    case $file in
      platform/*) ;;
      *) forbid "$file" "conditional compilation outside platform/" '^[[:space:]]*#[[:space:]]*(if|ifdef|ifndef|elif)\b' ;;
    esac
  done
}

# The driver lives in a process that is not its own: what it needs it imports from the system, and it neither looks for
# libraries by name, which a stranger's file in the right folder would answer, nor starts programs.
check_loading() {
  calls='LoadLibrary|LoadPackagedLibrary|LdrLoadDll|dlopen|SetDllDirectory|AddDllDirectory'
  calls="$calls|CreateProcess|ShellExecute|WinExec|system|_?w?popen|_?w?spawn[lv]p?e?|_?w?exec[lv]p?e?"
  for file in $(driver_files); do
    forbid "$file" "loads a library or starts a program" "\\b($calls)(Ex)?(A|W)?[[:space:]]*\\("
  done
}

# What MSVC refuses, or warns of, and the compilers here take. Microsoft's <winternl.h> declares less than other kits' do,
# and the headers of its kit for drivers are not among those for programs.
check_msvc() {
  kits='winternl\.h|ntdef\.h|ntstatus\.h|ntifs\.h|wdm\.h|ddk/'
  posix='unistd\.h|strings\.h|pthread\.h|dirent\.h|getopt\.h|sys/|cxxabi\.h|x86intrin\.h|bits/|ext/'
  constant='(k[A-Z][[:alnum:]]*|sizeof\([^()]*\)) *([=!]=|[<>]=?) *(k[A-Z]|[0-9])'
  for file in $(driver_files); do
    forbid "$file" "header that Microsoft has with other contents, or not" "$(includes_of "$kits")"
    case $file in
      *_posix.cpp | */attributes.h) ;;
      *)
        forbid "$file" "header that Microsoft has not" "$(includes_of "$posix")"
        forbid "$file" "extension that MSVC has not" '__attribute__|__builtin_|__int128|\[\[(gnu|clang)::'
        ;;
    esac
    forbid "$file" "condition that is constant (C4127)" "\\b(if|while) \(([^;]*[^[:alnum:]_.:>])?$constant"
    forbid "$file" "constant without an initializer (C4268)" '^(static )?const [[:alnum:]_:<>, ]+ [[:alnum:]_]+;'
  done
}

check_size() {
  for folder in $driver_folders companion report doctor selftest bench tests; do
    for file in $(files_of "$folder"); do
      case $file in
        companion/include/*) limit=299 ;;      # one header, to be taken along
        companion/minimal/minimal.*) limit=399 ;; # one file, to be copied
        *.h) limit=119 ;;
        *) limit=299 ;;
      esac
      lines=$(wc -l <"$file")
      if [ "$lines" -gt "$limit" ]; then
        echo "$file: $lines lines, more than $limit" >>"$breaches"
      fi
    done
  done
}

check_bench
check_adapters
check_loading
check_msvc
check_size
if [ -s "$breaches" ]; then
  cat "$breaches"
  exit 1
fi
echo "the sources keep the rules"
