#include "side.h"

#include "sharing/sharing_device.h"

#include <cstring>
#include <stdexcept>

namespace bench::test {

namespace {

// In 32-bit words; the formats of these tests have one or two of them to a pixel.
std::size_t RowWords(const D3D11_TEXTURE2D_DESC& description) {
  return description.Width * (description.Format == DXGI_FORMAT_R16G16B16A16_FLOAT ? std::size_t{2} : std::size_t{1});
}

}  // namespace

Pixels Pattern(std::uint32_t seed, UINT width, UINT height) {
  Pixels pixels(std::size_t{width} * height);
  for (std::uint32_t index = 0; auto& pixel : pixels) pixel = (seed << 24) | index++;
  return pixels;
}

D3D11_TEXTURE2D_DESC Description(UINT miscFlags, DXGI_FORMAT format) {
  return {.Width = kWidth,
          .Height = kHeight,
          .MipLevels = 1,
          .ArraySize = 1,
          .Format = format,
          .SampleDesc = {.Count = 1, .Quality = 0},
          .Usage = D3D11_USAGE_DEFAULT,
          .BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET,
          .CPUAccessFlags = 0,
          .MiscFlags = miscFlags};
}

HANDLE SharedHandle(ID3D11Texture2D* texture) {
  ComPtr<IDXGIResource> resource;
  HANDLE handle = nullptr;
  if (SUCCEEDED(texture->QueryInterface(IID_PPV_ARGS(&resource)))) resource->GetSharedHandle(&handle);
  return handle;
}

ComPtr<IDXGIKeyedMutex> KeyedMutex(ID3D11Texture2D* texture) {
  ComPtr<IDXGIKeyedMutex> mutex;
  texture->QueryInterface(IID_PPV_ARGS(&mutex));
  return mutex;
}

Side::Side() {
  if (FAILED(CreateSharingDevice(&device, &context))) throw std::runtime_error("no Direct3D 11 device");
}

ComPtr<ID3D11Texture2D> Side::Create(const D3D11_TEXTURE2D_DESC& description) const {
  ComPtr<ID3D11Texture2D> texture;
  device->CreateTexture2D(&description, nullptr, &texture);
  return texture;
}

ComPtr<ID3D11Texture2D> Side::Open(HANDLE handle) const {
  ComPtr<ID3D11Texture2D> texture;
  device->OpenSharedResource(handle, IID_PPV_ARGS(&texture));
  return texture;
}

void Side::Write(ID3D11Texture2D* texture, const Pixels& pixels) const {
  D3D11_TEXTURE2D_DESC description{};
  texture->GetDesc(&description);
  const auto pitch = static_cast<UINT>(RowWords(description) * sizeof(pixels[0]));
  context->UpdateSubresource(texture, 0, nullptr, pixels.data(), pitch, 0);
}

Pixels Side::Read(ID3D11Texture2D* texture) const {
  D3D11_TEXTURE2D_DESC description{};
  texture->GetDesc(&description);
  description.Usage = D3D11_USAGE_STAGING;
  description.BindFlags = 0;
  description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
  description.MiscFlags = 0;
  const auto staging = Create(description);
  context->CopyResource(staging.Get(), texture);
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context->Map(staging.Get(), 0, D3D11_MAP_READ, 0, &mapped))) return {};
  const std::size_t rowWords = RowWords(description);
  Pixels pixels(rowWords * description.Height);
  for (std::size_t row = 0; row < description.Height; ++row) {
    std::memcpy(&pixels[row * rowWords], static_cast<const std::byte*>(mapped.pData) + row * mapped.RowPitch,
                rowWords * sizeof(pixels[0]));
  }
  context->Unmap(staging.Get(), 0);
  return pixels;
}

}  // namespace bench::test
