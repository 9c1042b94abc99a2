#pragma once

#include <chrono>
#include <cstdint>

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <openvr_driver.h>

#include "sharing/textures.h"

namespace bench {

// A texture of the runtime's own that it shares with the driver under a keyed mutex (key 0 on both sides).
// Used by one thread.
class KeyedTexture {
 public:
  // Throws std::runtime_error if the device cannot make one.
  KeyedTexture(ID3D11Device& device, std::uint32_t width, std::uint32_t height, DXGI_FORMAT format);

  [[nodiscard]] vr::SharedTextureHandle_t Handle() const { return handle_; }
  [[nodiscard]] ID3D11Texture2D* Texture() const { return texture_.Get(); }
  [[nodiscard]] ID3D11RenderTargetView* Target() const { return target_.Get(); }
  // False when the other side kept it for longer than `timeout`.
  [[nodiscard]] bool Acquire(std::chrono::milliseconds timeout);
  void Release();

 private:
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture_;
  Microsoft::WRL::ComPtr<ID3D11RenderTargetView> target_;
  Microsoft::WRL::ComPtr<IDXGIKeyedMutex> mutex_;
  vr::SharedTextureHandle_t handle_ = 0;
};

}  // namespace bench
