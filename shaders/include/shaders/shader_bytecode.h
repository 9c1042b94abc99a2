// The compiled shader programs, carried inside the library. They may be asked for on any thread, and the
// bytes live as long as the library. Sources and entry point (`main`): the .hlsl files of this folder.
#pragma once

#include <cstdint>
#include <span>

namespace ombrel::shaders {

// vs_4_0. Draws 3 vertices without a vertex buffer; reads an eye's texture bounds (uMin, vMin, uMax, vMax;
// four floats) at b0.
[[nodiscard]] std::span<const std::uint8_t> LayerVertexShader();

// ps_4_0_level_9_3. Samples t0 with s0; reads a 32-bit integer at b1, which flips the picture if above 0.
[[nodiscard]] std::span<const std::uint8_t> LayerPixelShader();

// vs_4_0. Draws 3 vertices without a vertex buffer.
[[nodiscard]] std::span<const std::uint8_t> MirrorVertexShader();

// ps_4_0. Samples t0 with s0.
[[nodiscard]] std::span<const std::uint8_t> MirrorPixelShader();

}  // namespace ombrel::shaders
