#pragma once

#include <cstdint>

namespace ombrel {

// DXGI_FORMAT codes, so that the rule needs no system header.

[[nodiscard]] bool IsTypelessFormat(std::uint32_t format);

// The format in which a texture is viewed: some typeless ones get a typed one, all others stay as they are. 8-bit RGBA
// becomes linear and BGRA becomes sRGB (compatibility.md, C45).
[[nodiscard]] std::uint32_t ViewFormat(std::uint32_t format);

}  // namespace ombrel
