#pragma once

#include <array>
#include <cstdint>

namespace ombrel {

// The part of a texture that an eye shows; v grows downwards.
struct TextureBounds {
  float uMin, vMin, uMax, vMax;
};
using EyeBounds = std::array<TextureBounds, 2>;  // left, right

// One layer of a frame: a registered texture for each eye, and the bounds, which their owner may still change until the
// frame is presented.
struct LayerRecord {
  std::uint64_t leftTexture;
  std::uint64_t rightTexture;
  const EyeBounds* bounds;
};

// The pose that a frame was rendered with: 4 rows of 4, the last one 0, 0, 0, 1.
using FramePose = std::array<float, 16>;
static_assert(sizeof(FramePose) == 64);

// What the output textures are to be.
struct OutputConfiguration {
  std::uint32_t format;  // DXGI_FORMAT
  std::uint32_t width, height;
  std::uint8_t invertY;  // 1: layers are drawn upside down
};

// What the companion needs to open the output textures.
struct OutputSharing {
  std::array<std::uint64_t, 2> handles;
  std::uint8_t invertY;
};

// The renderer as the link core sees it. The two output textures alternate between driver and companion by their keyed
// mutexes, key 0 on both sides; `index` is 0 or 1. Times are in milliseconds. Threads: see each group. Nothing here
// throws, and what could not be made is left alone.
class IFrameRenderer {
 public:
  virtual ~IFrameRenderer() = default;

  // The server thread, once, before anything else.
  virtual void CreateDevice() = 0;

  // Setting up: one thread at a time, never while a frame is handed off.
  virtual void Configure(const OutputConfiguration& configuration) = 0;
  // Makes the output pair anew, and all that depends on its size. The companion's hold on the old pair means nothing.
  virtual bool CreateOutputTextures() = 0;
  // Any thread. True once the output pair exists.
  [[nodiscard]] virtual bool IsReady() const = 0;
  // In the place of a lost device: a new one, and all that was made on the old one but the runtime's textures. False
  // when that failed, and the device stays lost.
  virtual bool RemakeDevice() = 0;

  // Handing off, any number of threads, or set-up: asks the device whether it was lost (by a reset, an update of its
  // driver, a time-out). Not so when there never was one.
  [[nodiscard]] virtual bool IsDeviceLost() = 0;

  // Handing off: one thread at a time, or set-up.
  [[nodiscard]] virtual OutputSharing Sharing() = 0;
  // False when the time was up or the former holder died.
  virtual bool AcquireOutput(std::int32_t index, std::uint32_t timeoutMs) = 0;
  virtual bool ReleaseOutput(std::int32_t index) = 0;

  // Takes hold of the runtime's sync texture. False when it has a keyed mutex that could not be had.
  virtual bool AcquireSyncTexture(std::uint64_t handle, std::uint32_t timeoutMs) = 0;
  virtual void ReleaseSyncTexture() = 0;
  virtual void BeginLayers() = 0;
  virtual void ComposeLayer(std::int32_t outputIndex, const LayerRecord& layer) = 0;
  virtual void ClearOutput(std::int32_t index) = 0;

  // Copies the runtime's finished texture into an output, if `outputAcquired`. False when the runtime's texture has a
  // keyed mutex that could not be had.
  virtual bool CopyToOutput(std::uint64_t handle, std::int32_t outputIndex, bool outputAcquired,
                            std::uint32_t timeoutMs) = 0;
};

}  // namespace ombrel
