#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

#include "companion/frame_turns.h"
#include "companion/messages.h"
#include "companion/shared_block.h"

namespace companion {

// An 8-bit RGBA picture, display values, rows from the top, no padding. The left half is for the left eye.
struct Picture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  Bytes rgba;
};

// A frame as it came from the driver.
struct FrameInfo {
  int texture = 0;             // 0 or 1
  std::int64_t heldTicks = 0;  // performance counter when its lock was had
  PoseSlot slot = {};          // the pose beside it
};

// Reads the driver's output textures in their order. Holds each for no longer than it takes to queue a copy.
// For one thread, which is also the only one that uses the device's immediate context.
class FrameReader : private FrameLocks {
 public:
  // `device` has to be on the driver's adapter.
  explicit FrameReader(Microsoft::WRL::ComPtr<ID3D11Device> device);
  ~FrameReader() override;
  FrameReader(const FrameReader&) = delete;
  FrameReader& operator=(const FrameReader&) = delete;

  // Opens what a FrameSharingInfo tells; earlier textures are let go. The first failed result otherwise;
  // a missing pose block is no failure, its slots then read as zeros.
  HRESULT Open(const FrameSharingInfo& info);
  void Close();
  bool IsOpen() const { return textures_[0] != nullptr; }
  bool HasPoseBlock() const { return hasBlock_; }
  // Output texture 0 or 1; null when it is not open. To be read only in Next.
  ID3D11Texture2D* Texture(int index) const { return textures_[static_cast<std::size_t>(index)].Get(); }

  // Waits at most `timeoutMs` for the next frame. `wantsPixels` is asked while the texture is held;
  // if it says yes, Pixels() gives the picture until the next call. May return early without a frame.
  // Failed once the textures are of no use any more.
  TurnResult Next(std::uint32_t timeoutMs, const std::function<bool(const FrameInfo&)>& wantsPixels, FrameInfo& frame);

  // The copy of the last frame whose pixels were wanted; nothing when it cannot be read.
  std::optional<Picture> Pixels();

 private:
  HRESULT OpenTexture(std::size_t index, std::uint32_t sharedHandle);
  HRESULT CreateCopyTarget();
  LockResult Acquire(int index, std::uint32_t timeoutMs) override;
  void Release(int index) override;

  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  std::array<Microsoft::WRL::ComPtr<ID3D11Texture2D>, 2> textures_;
  std::array<Microsoft::WRL::ComPtr<IDXGIKeyedMutex>, 2> locks_;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> copy_;
  SharedBlock block_;
  bool hasBlock_ = false;
  std::optional<FrameTurns> turns_;
};

}  // namespace companion
