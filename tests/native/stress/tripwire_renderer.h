#pragma once

#include <atomic>
#include <cstdint>

#include "counter.h"
#include "render/headset_renderer.h"

namespace ombrel::test {

// Draws nothing, and writes plain fields where a renderer would use its device: calls that the link must keep apart
// (set-up and the hand-off of frames) race on them when it does not, which the thread sanitizer sees.
class TripwireRenderer final : public IHeadsetRenderer {
 public:
  struct Work {
    Counter setUps, remakes, layers, copies, swapTextures;
    Counter mixedLayers;  // whose textures or bounds were not of one submission
  };
  // Of all renderers since Forget.
  static Work& Done();
  static void Forget();
  // The device of each renderer is lost, until it is made anew.
  static void LoseDevices();

  TripwireRenderer();
  void CreateDevice() override {}
  void Configure(const OutputConfiguration& output) override;
  bool CreateOutputTextures() override;
  [[nodiscard]] bool IsReady() const override { return ready_; }
  bool RemakeDevice() override;
  [[nodiscard]] bool IsDeviceLost() override;
  [[nodiscard]] OutputSharing Sharing() override;
  bool AcquireOutput(std::int32_t index, std::uint32_t timeoutMs) override;
  bool ReleaseOutput(std::int32_t index) override;
  bool AcquireSyncTexture(std::uint64_t handle, std::uint32_t timeoutMs) override;
  void ReleaseSyncTexture() override { ++touched_; }
  void BeginLayers() override { ++touched_; }
  void ComposeLayer(std::int32_t outputIndex, const LayerRecord& layer) override;
  void ClearOutput(std::int32_t index) override;
  bool CopyToOutput(std::uint64_t handle, std::int32_t outputIndex, bool outputAcquired,
                    std::uint32_t timeoutMs) override;
  [[nodiscard]] SwapTexture CreateSwapTexture(const SwapTextureDesc& desc) override;
  void RegisterTexture(std::uint64_t /*handle*/) override {}
  void UnregisterTexture(std::uint64_t /*handle*/) override {}

 private:
  std::uint64_t touched_ = 0;
  OutputConfiguration output_{};
  std::atomic<bool> ready_{false};
  std::uint32_t lossesMended_;
  Counter lastHandle_;
};

}  // namespace ombrel::test
