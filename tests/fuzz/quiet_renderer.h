#pragma once

#include "render/headset_renderer.h"

namespace ombrel::test {

// Draws nothing and always succeeds. A time-out over a second, or an output that is not there, ends the process.
class QuietRenderer final : public IHeadsetRenderer {
 public:
  void CreateDevice() override {}
  void Configure(const OutputConfiguration& /*output*/) override {}
  bool CreateOutputTextures() override { return ready_ = true; }
  [[nodiscard]] bool IsReady() const override { return ready_; }
  bool RemakeDevice() override { return true; }
  [[nodiscard]] bool IsDeviceLost() override { return false; }
  [[nodiscard]] OutputSharing Sharing() override { return {.handles = {0x40000002, 0x40000006}, .invertY = 0}; }
  bool AcquireOutput(std::int32_t index, std::uint32_t timeoutMs) override;
  bool ReleaseOutput(std::int32_t index) override;
  bool AcquireSyncTexture(std::uint64_t handle, std::uint32_t timeoutMs) override;
  void ReleaseSyncTexture() override {}
  void BeginLayers() override {}
  void ComposeLayer(std::int32_t outputIndex, const LayerRecord& layer) override;
  void ClearOutput(std::int32_t index) override;
  bool CopyToOutput(std::uint64_t handle, std::int32_t outputIndex, bool outputAcquired,
                    std::uint32_t timeoutMs) override;
  [[nodiscard]] SwapTexture CreateSwapTexture(const SwapTextureDesc& /*desc*/) override { return {}; }
  void RegisterTexture(std::uint64_t /*handle*/) override {}
  void UnregisterTexture(std::uint64_t /*handle*/) override {}

 private:
  bool ready_ = false;
};

}  // namespace ombrel::test
