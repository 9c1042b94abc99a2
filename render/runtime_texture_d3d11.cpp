#include "runtime_texture_d3d11.h"

namespace ombrel {
namespace {

constexpr UINT64 kKey = 0;

}  // namespace

ComPtr<ID3D11Texture2D> OpenRuntimeTexture(ID3D11Device* device, std::uint64_t handle) {
  ComPtr<ID3D11Resource> resource;
  ComPtr<ID3D11Texture2D> texture;
  if (device == nullptr) return texture;
  const auto shared = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(handle));
  if (SUCCEEDED(device->OpenSharedResource(shared, __uuidof(ID3D11Resource),
                                           reinterpret_cast<void**>(resource.GetAddressOf()))) &&
      resource) {
    static_cast<void>(resource.As(&texture));
  }
  return texture;
}

bool RuntimeTextureHold::Acquire(const ComPtr<ID3D11Texture2D>& texture, std::uint32_t timeoutMs) {
  Release();
  ComPtr<IDXGIKeyedMutex> keyedMutex;
  if (!texture || FAILED(texture.As(&keyedMutex))) return true;
  // A time-out and an abandoned hold are positive numbers, which FAILED does not see.
  if (keyedMutex->AcquireSync(kKey, timeoutMs) != S_OK) return false;
  texture_ = texture;
  keyedMutex_ = keyedMutex;
  return true;
}

void RuntimeTextureHold::Release() {
  if (keyedMutex_) keyedMutex_->ReleaseSync(kKey);
  keyedMutex_.Reset();
  texture_.Reset();
}

}  // namespace ombrel
