#include "picture/read_image.h"

#include "sharing/textures.h"

namespace bench {

Image ReadImage(ID3D11Texture2D* texture) {
  D3D11_TEXTURE2D_DESC description{};
  texture->GetDesc(&description);
  auto pixels = ReadTexture(texture);
  if (pixels.empty()) return {};
  return Image(static_cast<int>(description.Width), static_cast<int>(description.Height), std::move(pixels));
}

}  // namespace bench
