#include "side.h"

#include <cstring>

#include "picture/comparison.h"
#include "sharing/sharing_device.h"

namespace bench::test {
namespace {

Pixels ToWords(const std::vector<std::uint8_t>& bytes) {
  Pixels words(bytes.size() / sizeof(Pixels::value_type));
  std::memcpy(words.data(), bytes.data(), bytes.size());
  return words;
}

}  // namespace

Pixels Pattern(std::uint8_t seed, UINT width, UINT height) {
  return ToWords(Paint(static_cast<int>(width), static_cast<int>(height), bench::Pattern(seed)).pixels);
}

Side::Side() { RequireOk(CreateSharingDevice(&device, &context), "making a device"); }

ComPtr<ID3D11Texture2D> Side::Create(const D3D11_TEXTURE2D_DESC& description) const {
  ComPtr<ID3D11Texture2D> texture;
  device->CreateTexture2D(&description, nullptr, &texture);
  return texture;
}

void Side::Write(ID3D11Texture2D* texture, const Pixels& pixels) const {
  D3D11_TEXTURE2D_DESC description{};
  texture->GetDesc(&description);
  const auto pitch = static_cast<UINT>(pixels.size() * sizeof(pixels[0]) / description.Height);
  context->UpdateSubresource(texture, 0, nullptr, pixels.data(), pitch, 0);
}

Pixels Side::Read(ID3D11Texture2D* texture) { return ToWords(ReadTexture(texture)); }

}  // namespace bench::test
