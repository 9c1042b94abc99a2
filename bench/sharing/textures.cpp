#include "sharing/textures.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include "pixel_formats.h"

namespace bench {

using Microsoft::WRL::ComPtr;

void RequireOk(HRESULT result, const char* what) {
  if (result == S_OK) return;
  char code[16];
  std::snprintf(code, sizeof(code), "0x%08lX", static_cast<unsigned long>(result));
  throw std::runtime_error(std::string(what) + " failed with " + code);
}

D3D11_TEXTURE2D_DESC TextureDescription(UINT width, UINT height, DXGI_FORMAT format, UINT miscFlags) {
  return CD3D11_TEXTURE2D_DESC(format, width, height, 1, 1, D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET,
                               D3D11_USAGE_DEFAULT, 0, 1, 0, miscFlags);
}

D3D11_TEXTURE2D_DESC StagingDescription(const D3D11_TEXTURE2D_DESC& description) {
  D3D11_TEXTURE2D_DESC staging = description;
  staging.Usage = D3D11_USAGE_STAGING;
  staging.BindFlags = 0;
  staging.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
  staging.MiscFlags = 0;
  return staging;
}

std::uint32_t SharedHandle(ID3D11Texture2D* texture) {
  ComPtr<IDXGIResource> resource;
  HANDLE handle = nullptr;
  if (FAILED(texture->QueryInterface(IID_PPV_ARGS(&resource))) || FAILED(resource->GetSharedHandle(&handle))) return 0;
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

ComPtr<ID3D11Texture2D> OpenTexture(ID3D11Device& device, std::uint32_t handle) {
  ComPtr<ID3D11Texture2D> texture;
  device.OpenSharedResource(reinterpret_cast<HANDLE>(std::uintptr_t{handle}), IID_PPV_ARGS(&texture));
  return texture;
}

ComPtr<IDXGIKeyedMutex> FindKeyedMutex(ID3D11Texture2D* texture) {
  ComPtr<IDXGIKeyedMutex> mutex;
  texture->QueryInterface(IID_PPV_ARGS(&mutex));
  return mutex;
}

std::vector<std::uint8_t> ReadStaging(ID3D11DeviceContext& context, ID3D11Texture2D* staging, UINT rowBytes) {
  D3D11_TEXTURE2D_DESC description{};
  staging->GetDesc(&description);
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context.Map(staging, 0, D3D11_MAP_READ, 0, &mapped))) return {};
  std::vector<std::uint8_t> bytes(std::size_t{rowBytes} * description.Height);
  const auto* rows = static_cast<const std::uint8_t*>(mapped.pData);
  for (std::size_t row = 0; row < description.Height; ++row) {
    std::memcpy(bytes.data() + row * rowBytes, rows + row * mapped.RowPitch, rowBytes);
  }
  context.Unmap(staging, 0);
  return bytes;
}

std::vector<std::uint8_t> ReadTexture(ID3D11Texture2D* texture) {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  ComPtr<ID3D11Texture2D> staging;
  D3D11_TEXTURE2D_DESC description{};
  texture->GetDevice(&device);
  texture->GetDesc(&description);
  device->GetImmediateContext(&context);
  const D3D11_TEXTURE2D_DESC wanted = StagingDescription(description);
  if (FAILED(device->CreateTexture2D(&wanted, nullptr, &staging))) return {};
  context->CopyResource(staging.Get(), texture);
  return ReadStaging(*context.Get(), staging.Get(), description.Width * BytesPerPixel(description.Format));
}

}  // namespace bench
