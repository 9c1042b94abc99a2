#include "runtime/keyed_texture.h"

#include <cstdio>
#include <stdexcept>
#include <string>

namespace bench {
namespace {

constexpr UINT64 kKey = 0;

}  // namespace

void RequireOk(HRESULT result, const char* what) {
  if (result != S_OK) {  // time-outs and abandoned holds are positive, so FAILED would miss them
    char code[16];
    std::snprintf(code, sizeof code, "0x%08lX", static_cast<unsigned long>(result));
    throw std::runtime_error(std::string(what) + " failed with " + code);
  }
}

KeyedTexture::KeyedTexture(ID3D11Device& device, std::uint32_t width, std::uint32_t height, DXGI_FORMAT format) {
  D3D11_TEXTURE2D_DESC description{};
  description.Width = width;
  description.Height = height;
  description.MipLevels = 1;
  description.ArraySize = 1;
  description.Format = format;
  description.SampleDesc.Count = 1;
  description.Usage = D3D11_USAGE_DEFAULT;
  description.BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET;
  description.MiscFlags = D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX;
  RequireOk(device.CreateTexture2D(&description, nullptr, &texture_), "making a shared texture");
  RequireOk(device.CreateRenderTargetView(texture_.Get(), nullptr, &target_), "making a shared texture's target");
  RequireOk(texture_.As(&mutex_), "finding a shared texture's mutex");
  Microsoft::WRL::ComPtr<IDXGIResource> resource;
  RequireOk(texture_.As(&resource), "finding a shared texture's resource");
  HANDLE handle = nullptr;
  RequireOk(resource->GetSharedHandle(&handle), "finding a shared texture's handle");
  handle_ = reinterpret_cast<vr::SharedTextureHandle_t>(handle);
}

bool KeyedTexture::Acquire(std::chrono::milliseconds timeout) {
  return mutex_->AcquireSync(kKey, static_cast<DWORD>(timeout.count())) == S_OK;
}

void KeyedTexture::Release() { RequireOk(mutex_->ReleaseSync(kKey), "releasing a shared texture"); }

}  // namespace bench
