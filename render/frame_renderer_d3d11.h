#pragma once

#include <atomic>
#include <cstdint>
#include <unordered_map>

#include "device_d3d11.h"
#include "layer_pipeline_d3d11.h"
#include "output_pair_d3d11.h"
#include "platform/sync.h"
#include "render/headset_renderer.h"
#include "runtime_texture_d3d11.h"

namespace ombrel {

// Composes the runtime's textures into the output pair with Direct3D 11. Without a device it does nothing.
class FrameRenderer final : public IHeadsetRenderer {
 public:
  void CreateDevice() override;
  [[nodiscard]] bool IsDeviceLost() override;
  bool RemakeDevice() override;

  void Configure(const OutputConfiguration& configuration) override { output_ = configuration; }
  bool CreateOutputTextures() override;
  [[nodiscard]] bool IsReady() const override { return ready_.load(std::memory_order_acquire); }

  [[nodiscard]] OutputSharing Sharing() override;
  bool AcquireOutput(std::int32_t index, std::uint32_t timeoutMs) override {
    return outputs_.Acquire(index, timeoutMs);
  }
  bool ReleaseOutput(std::int32_t index) override { return outputs_.ReleaseToCompanion(index); }
  bool AcquireSyncTexture(std::uint64_t handle, std::uint32_t timeoutMs) override;
  void ReleaseSyncTexture() override { syncHold_.Release(); }
  void BeginLayers() override;
  void ComposeLayer(std::int32_t outputIndex, const LayerRecord& layer) override;
  void ClearOutput(std::int32_t index) override;
  bool CopyToOutput(std::uint64_t handle, std::int32_t outputIndex, bool outputAcquired,
                    std::uint32_t timeoutMs) override;

  [[nodiscard]] SwapTexture CreateSwapTexture(const SwapTextureDesc& desc) override;
  void RegisterTexture(std::uint64_t handle) override;
  void UnregisterTexture(std::uint64_t handle) override;

 private:
  using View = ComPtr<ID3D11ShaderResourceView>;

  using ViewMap = std::unordered_map<std::uint64_t, View>;

  void ReplaceDevice(RenderDevice device);
  [[nodiscard]] ComPtr<ID3D11Device> Device() const;
  [[nodiscard]] View FindView(std::uint64_t handle) const;

  // Swap textures come and go on the runtime's threads while frames are drawn and while the device is replaced: held for
  // a look-up or a change alone.
  mutable Mutex mutex_;
  ViewMap textureViews_;  // of device_; guarded by mutex_
  RenderDevice device_;   // replaced under mutex_, and never while a frame is handed off
  std::atomic<bool> isLost_{false};
  LayerPipeline pipeline_;
  OutputPair outputs_;
  RuntimeTextureHold syncHold_;
  OutputConfiguration output_{};
  std::atomic<bool> ready_{false};
};

}  // namespace ombrel
