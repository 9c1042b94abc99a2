#include "output_pair_d3d11.h"

namespace ombrel {
namespace {

constexpr UINT64 kKey = 0;

}  // namespace

void OutputPair::Release() { outputs_ = {}; }

bool OutputPair::Create(ID3D11Device& device, std::uint32_t width, std::uint32_t height, DXGI_FORMAT format) {
  Release();
  const D3D11_TEXTURE2D_DESC desc{
      .Width = width,
      .Height = height,
      .MipLevels = 1,
      .ArraySize = 1,
      .Format = format,
      .SampleDesc = {.Count = 1, .Quality = 0},
      .Usage = D3D11_USAGE_DEFAULT,
      .BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET,
      .CPUAccessFlags = 0,
      .MiscFlags = D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX,
  };
  std::array<Output, 2> made;
  for (Output& output : made) {
    if (FAILED(device.CreateTexture2D(&desc, nullptr, output.texture.GetAddressOf()))) return false;
    // Without a keyed mutex every acquire fails, which is all that follows.
    static_cast<void>(output.texture.As(&output.keyedMutex));
  }
  outputs_ = made;
  return true;
}

void OutputPair::CreateViews(ID3D11Device& device, DXGI_FORMAT format) {
  D3D11_RENDER_TARGET_VIEW_DESC desc{};
  desc.Format = format;
  desc.ViewDimension = D3D11_RTV_DIMENSION_TEXTURE2D;
  for (Output& output : outputs_) {
    output.view.Reset();
    if (output.texture) device.CreateRenderTargetView(output.texture.Get(), &desc, output.view.GetAddressOf());
  }
}

bool OutputPair::Acquire(std::int32_t index, std::uint32_t timeoutMs) {
  // A time-out and an abandoned hold are positive numbers, which FAILED does not see.
  return At(index).keyedMutex && At(index).keyedMutex->AcquireSync(kKey, timeoutMs) == S_OK;
}

bool OutputPair::ReleaseToCompanion(std::int32_t index) {
  return At(index).keyedMutex && At(index).keyedMutex->ReleaseSync(kKey) == S_OK;
}

std::uint64_t OutputPair::SharedHandle(std::int32_t index) const {
  ComPtr<IDXGIResource> resource;
  HANDLE handle = nullptr;
  if (!At(index).texture || FAILED(At(index).texture.As(&resource))) return 0;
  if (FAILED(resource->GetSharedHandle(&handle))) return 0;
  return reinterpret_cast<std::uintptr_t>(handle);
}

}  // namespace ombrel
