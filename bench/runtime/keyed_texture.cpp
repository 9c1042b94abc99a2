#include "runtime/keyed_texture.h"

#include <stdexcept>

namespace bench {
namespace {

constexpr UINT64 kKey = 0;

}  // namespace

KeyedTexture::KeyedTexture(ID3D11Device& device, std::uint32_t width, std::uint32_t height, DXGI_FORMAT format) {
  const auto description = TextureDescription(width, height, format, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  RequireOk(device.CreateTexture2D(&description, nullptr, &texture_), "making a shared texture");
  RequireOk(device.CreateRenderTargetView(texture_.Get(), nullptr, &target_), "making a shared texture's target");
  RequireOk(texture_.As(&mutex_), "finding a shared texture's mutex");
  handle_ = SharedHandle(texture_.Get());
  if (handle_ == 0) throw std::runtime_error("a shared texture without a handle");
}

bool KeyedTexture::Acquire(std::chrono::milliseconds timeout) {
  return mutex_->AcquireSync(kKey, static_cast<DWORD>(timeout.count())) == S_OK;
}

void KeyedTexture::Release() { RequireOk(mutex_->ReleaseSync(kKey), "releasing a shared texture"); }

}  // namespace bench
