#include "toy_headset.h"

namespace bench {

void* ToyHeadset::GetComponent(const char* name) {
  const std::string wanted = name;
  if (wanted == vr::IVRDisplayComponent_Version) {
    return static_cast<vr::IVRDisplayComponent*>(this);
  }
  if (wanted == vr::IVRDriverDirectModeComponent_Version) {
    return static_cast<vr::IVRDriverDirectModeComponent*>(this);
  }
  return wanted == vr::IVRVirtualDisplay_Version ? static_cast<vr::IVRVirtualDisplay*>(this) : nullptr;
}

void ToyHeadset::GetWindowBounds(int32_t* x, int32_t* y, uint32_t* width, uint32_t* height) {
  *x = *y = -1;
  *width = 2 * kWidth;
  *height = kHeight;
}

void ToyHeadset::GetEyeOutputViewport(vr::EVREye eye, uint32_t* x, uint32_t* y, uint32_t* width, uint32_t* height) {
  *x = eye == vr::Eye_Left ? 0 : kWidth;
  *y = 0;
  *width = kWidth;
  *height = kHeight;
}

void ToyHeadset::CreateSwapTextureSet(uint32_t, const SwapTextureSetDesc_t* desc,
                                      vr::SharedTextureHandle_t (*handles)[3]) {
  calls.push_back("CreateSwapTextureSet");
  descriptions.push_back(*desc);
  for (auto& handle : *handles) {
    Microsoft::WRL::ComPtr<ID3D11Texture2D> texture = CreateTexture(*desc);
    Microsoft::WRL::ComPtr<IDXGIResource> resource;
    HANDLE shared = nullptr;
    RequireOk(texture.As(&resource), "finding the resource");
    RequireOk(resource->GetSharedHandle(&shared), "finding the handle");
    handle = reinterpret_cast<vr::SharedTextureHandle_t>(shared);
    swapTextures.emplace_back(handle, texture);
  }
}

Microsoft::WRL::ComPtr<ID3D11Texture2D> ToyHeadset::CreateTexture(const SwapTextureSetDesc_t& desc) {
  D3D11_TEXTURE2D_DESC description{};
  description.Width = desc.nWidth;
  description.Height = desc.nHeight;
  description.MipLevels = description.ArraySize = 1;
  description.Format = static_cast<DXGI_FORMAT>(desc.nFormat);
  description.SampleDesc.Count = desc.nSampleCount;
  description.BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET;
  description.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
  RequireOk(device->CreateTexture2D(&description, nullptr, &texture), "making a swap texture");
  return texture;
}

Rgba ToyHeadset::CentreOf(vr::SharedTextureHandle_t handle) {
  for (const auto& [known, texture] : swapTextures) {
    if (known == handle) {
      return ReadImage(texture.Get()).At(kWidth / 2, kHeight / 2);
    }
  }
  return {};
}

Microsoft::WRL::ComPtr<ID3D11Texture2D> ToyHeadset::Open(vr::SharedTextureHandle_t handle) {
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
  RequireOk(device->OpenSharedResource(reinterpret_cast<HANDLE>(handle), IID_PPV_ARGS(&texture)), "opening a texture");
  return texture;
}

bool ToyHeadset::TryHold(vr::SharedTextureHandle_t handle) {
  Microsoft::WRL::ComPtr<IDXGIKeyedMutex> mutex;
  RequireOk(Open(handle).As(&mutex), "finding the mutex");
  return mutex->AcquireSync(0, 0) == S_OK && mutex->ReleaseSync(0) == S_OK;
}

Image ToyHeadset::ReadShared(vr::SharedTextureHandle_t handle) {
  const auto texture = Open(handle);
  Microsoft::WRL::ComPtr<IDXGIKeyedMutex> mutex;
  RequireOk(texture.As(&mutex), "finding the mutex");
  RequireOk(mutex->AcquireSync(0, 1000), "holding the finished texture");
  Image copy = ReadImage(texture.Get());
  RequireOk(mutex->ReleaseSync(0), "giving the finished texture back");
  return copy;
}

}  // namespace bench
