#!/bin/sh
# Has a compiled shader read by somebody else than the compiler that wrote it:
#   check_shader.sh SHADER.cso Vertex|Fragment BINDING...
# vkd3d-compiler turns the bytecode into SPIR-V, spirv-val judges it, and spirv-dis tells which registers it binds
# (cb0, t0, s0), which must be those named. Prints what is wrong and fails; 77 when one of the programs is not here.
set -eu
shader=$1
stage=$2
shift 2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
  echo "$shader: $1"
  exit 1
}

for program in vkd3d-compiler spirv-val spirv-dis; do
  command -v "$program" >/dev/null || {
    echo "skipped: no $program to read the shaders with"
    exit 77
  }
done

vkd3d-compiler -x dxbc-tpf -b spirv-binary -o "$folder/shader.spv" "$shader" || fail "cannot be read"
spirv-val --target-env vulkan1.0 "$folder/shader.spv" || fail "does not make a valid program"
spirv-dis --no-color "$folder/shader.spv" -o "$folder/text"
grep -q "OpEntryPoint $stage %main" "$folder/text" || fail "is no $stage shader"
# Constant buffers are named by register and index of their set (cb1_0), textures and samplers by register alone.
bound=$(sed -nE 's/^.*OpDecorate %((cb[0-9]+)(_[0-9]+)?|[ts][0-9]+) Binding .*$/\1/p' "$folder/text" |
  sed 's/_.*//' | sort | tr '\n' ' ')
wanted=$(printf '%s\n' "$@" | sort | tr '\n' ' ')
[ "${bound% }" = "${wanted% }" ] || fail "binds '${bound% }', not '${wanted% }'"
# A triangle made from the vertex id needs no vertex buffer.
if [ "$stage" = Vertex ]; then
  ! grep -q 'OpEntryPoint.* %v[0-9]' "$folder/text" || fail "takes vertices"
fi
echo "$shader: read, valid, binds ${bound:-nothing}"
