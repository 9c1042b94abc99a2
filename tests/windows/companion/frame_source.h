#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "base/owned_handle.h"
#include "companion/messages.h"
#include "companion/pose_history.h"
#include "picture/image.h"

// Hands frames over in the way the protocol page tells of the driver: two textures in turns, a pose beside each.
class FrameSource {
 public:
  // `width` and `height` of both eyes together. False when there is no device.
  bool Create(std::uint32_t width, std::uint32_t height, std::uint32_t acquireTimeoutMs = 1000);

  companion::FrameSharingInfo Info() const;

  // Fills the eyes with a colour each, writes the pose, releases the texture and turns to the other one.
  // False when the other one could not be had in time.
  bool Present(const bench::Rgba& left, const bench::Rgba& right, const companion::PoseSlot& slot);

 private:
  struct Unmap {
    void operator()(void* view) const { UnmapViewOfFile(view); }
  };
  void FillHalf(std::uint32_t half, const bench::Rgba& colour);

  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  std::array<Microsoft::WRL::ComPtr<ID3D11Texture2D>, 2> textures_;
  std::array<Microsoft::WRL::ComPtr<IDXGIKeyedMutex>, 2> locks_;
  std::array<std::uint32_t, 2> handles_{};
  std::string name_;
  bench::OwnedHandle mapping_;
  std::unique_ptr<void, Unmap> block_;
  std::uint32_t width_ = 0;
  std::uint32_t height_ = 0;
  std::uint32_t acquireTimeoutMs_ = 0;
  std::size_t current_ = 0;
};
