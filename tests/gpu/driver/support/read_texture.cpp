#include "gpu_support/read_texture.h"

#include <wrl/client.h>

#include <cstring>
#include <stdexcept>

namespace ombrel::test {

bench::Image ReadTexture(ID3D11Device& device, ID3D11DeviceContext& context, ID3D11Texture2D* texture) {
  D3D11_TEXTURE2D_DESC desc{};
  texture->GetDesc(&desc);
  desc.Usage = D3D11_USAGE_STAGING;
  desc.BindFlags = 0;
  desc.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
  desc.MiscFlags = 0;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> staging;
  if (FAILED(device.CreateTexture2D(&desc, nullptr, &staging)))
    throw std::runtime_error("making a texture to read from failed");
  context.CopyResource(staging.Get(), texture);
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context.Map(staging.Get(), 0, D3D11_MAP_READ, 0, &mapped)))
    throw std::runtime_error("reading a texture failed");
  bench::Image image(static_cast<int>(desc.Width), static_cast<int>(desc.Height));
  const std::size_t row = std::size_t{4} * desc.Width;
  for (std::size_t y = 0; y < desc.Height; ++y) {
    std::memcpy(image.pixels.data() + y * row, static_cast<const std::uint8_t*>(mapped.pData) + y * mapped.RowPitch,
                row);
  }
  context.Unmap(staging.Get(), 0);
  return image;
}

}  // namespace ombrel::test
