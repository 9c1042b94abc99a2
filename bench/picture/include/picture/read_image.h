#pragma once

#include <d3d11.h>

#include "picture/image.h"

namespace bench {

// What a texture of 4 bytes a pixel shows, in the order of its bytes; empty when Direct3D fails. On the thread that uses
// its device.
[[nodiscard]] Image ReadImage(ID3D11Texture2D* texture);

}  // namespace bench
