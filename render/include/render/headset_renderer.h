#pragma once

#include <cstdint>
#include <memory>

#include "link/frame_renderer.h"

namespace ombrel {

struct SwapTextureDesc {
  std::uint32_t width, height;
  std::uint32_t format;  // DXGI_FORMAT
  std::uint32_t sampleCount;
};

// A texture that the runtime renders into. The handle is 0 when it could not be made.
struct SwapTexture {
  std::uint64_t handle = 0;
  std::shared_ptr<void> texture;  // keeps it alive
};

// What a headset asks of its renderer beyond the hand-off of frames: textures for the runtime, and views of those it
// will show. Called on the runtime's threads.
class ISwapTextureDevice {
 public:
  virtual ~ISwapTextureDevice() = default;

  [[nodiscard]] virtual SwapTexture CreateSwapTexture(const SwapTextureDesc& desc) = 0;
  // A texture that cannot be opened is left out; one that is known already keeps its view.
  virtual void RegisterTexture(std::uint64_t handle) = 0;
  virtual void UnregisterTexture(std::uint64_t handle) = 0;
};

class IHeadsetRenderer : public IFrameRenderer, public ISwapTextureDevice {};

// The Direct3D 11 renderer, without its device yet.
[[nodiscard]] std::unique_ptr<IHeadsetRenderer> MakeHeadsetRenderer();

}  // namespace ombrel
