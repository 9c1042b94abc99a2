#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

#include "render/headset_renderer.h"
#include "support/journal.h"

namespace ombrel::test {

// A renderer that draws nothing and keeps a journal of its calls, one line each: "AcquireOutput 0 16" (index, time-out),
// "ComposeLayer 0 11 12" (output, left texture, right texture), and so on. Answers as it is told.
class FakeRenderer final : public IHeadsetRenderer {
 public:
  void CreateDevice() override { Record("CreateDevice"); }
  void Configure(const OutputConfiguration& output) override;
  bool CreateOutputTextures() override;
  [[nodiscard]] bool IsReady() const override { return ready; }
  bool RemakeDevice() override;
  [[nodiscard]] bool IsDeviceLost() override { return deviceLost; }  // not in the journal: each frame asks
  [[nodiscard]] OutputSharing Sharing() override;
  bool AcquireOutput(std::int32_t index, std::uint32_t timeoutMs) override;
  bool ReleaseOutput(std::int32_t index) override;
  bool AcquireSyncTexture(std::uint64_t handle, std::uint32_t timeoutMs) override;
  void ReleaseSyncTexture() override { Record("ReleaseSyncTexture"); }
  void BeginLayers() override { Record("BeginLayers"); }
  void ComposeLayer(std::int32_t outputIndex, const LayerRecord& layer) override;
  void ClearOutput(std::int32_t index) override;
  bool CopyToOutput(std::uint64_t handle, std::int32_t outputIndex, bool outputAcquired,
                    std::uint32_t timeoutMs) override;

  [[nodiscard]] SwapTexture CreateSwapTexture(const SwapTextureDesc& desc) override;
  void RegisterTexture(std::uint64_t handle) override;
  void UnregisterTexture(std::uint64_t handle) override;

  Journal journal;
  // Called behind each entry, on the caller's thread; may block. Set before the driver's threads run.
  std::function<void(const std::string& line)> onCall;
  // Called for each layer as it is drawn.
  std::function<void(const LayerRecord& layer)> onLayer;

  std::atomic<bool> ready{false};
  std::atomic<bool> deviceLost{false};  // until it is made anew
  std::atomic<bool> canRemakeDevice{true};
  std::atomic<bool> canCreateOutputs{true};
  std::atomic<bool> canAcquireOutput{true};
  std::atomic<bool> canAcquireSync{true};
  std::atomic<bool> canCopy{true};
  std::atomic<std::uint64_t> handle0{0x1122334455667788U};
  std::atomic<std::uint64_t> handle1{0x99AABBCCDDEEFF00U};
  std::atomic<std::uint8_t> invertY{1};
  std::function<std::uint64_t()> nextSwapHandle;  // counts from 100 when empty
  std::atomic<int> liveSwapTextures{0};

 private:
  void Record(const std::string& line);

  std::uint64_t lastSwapHandle_ = 99;
};

}  // namespace ombrel::test
