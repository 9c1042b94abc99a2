#pragma once

#include <d3d11.h>

#include "companion/image.h"

namespace ombrel::test {

// What a texture of the device shows, 4 bytes a pixel in the order of its bytes. Throws std::runtime_error when Direct3D
// fails.
[[nodiscard]] bench::Image ReadTexture(ID3D11Device& device, ID3D11DeviceContext& context, ID3D11Texture2D* texture);

}  // namespace ombrel::test
