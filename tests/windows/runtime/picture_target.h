#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <d3d11.h>
#include <wrl/client.h>

#include "runtime/keyed_texture.h"

namespace bench {

using Pixel = std::array<std::uint8_t, 4>;  // red, green, blue, alpha

/// A texture's pixels as they are now, row by row.
struct PictureCopy {
  std::uint32_t width = 0;
  std::vector<Pixel> pixels;
  [[nodiscard]] const Pixel& At(std::uint32_t x, std::uint32_t y) const { return pixels[std::size_t{y} * width + x]; }
};

inline PictureCopy ReadPixels(ID3D11Device& device, ID3D11DeviceContext& context, ID3D11Texture2D& texture) {
  D3D11_TEXTURE2D_DESC description{};
  texture.GetDesc(&description);
  const std::uint32_t height = description.Height;
  description.Usage = D3D11_USAGE_STAGING;
  description.BindFlags = 0;
  description.MiscFlags = 0;
  description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> staging;
  RequireOk(device.CreateTexture2D(&description, nullptr, &staging), "making a staging texture");
  context.CopyResource(staging.Get(), &texture);
  D3D11_MAPPED_SUBRESOURCE mapped{};
  RequireOk(context.Map(staging.Get(), 0, D3D11_MAP_READ, 0, &mapped), "mapping a staging texture");
  PictureCopy copy{description.Width, {}};
  for (std::uint32_t y = 0; y < height; ++y) {
    const auto* row = static_cast<const std::uint8_t*>(mapped.pData) + std::size_t{y} * mapped.RowPitch;
    for (std::uint32_t x = 0; x < description.Width; ++x) {
      copy.pixels.push_back({row[4 * x], row[4 * x + 1], row[4 * x + 2], row[4 * x + 3]});
    }
  }
  context.Unmap(staging.Get(), 0);
  return copy;
}

}  // namespace bench
