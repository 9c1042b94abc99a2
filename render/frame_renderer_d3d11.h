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

  [[nodiscard]] View FindView(std::uint64_t handle) const;

  // Swap textures come and go on the runtime's threads while frames are drawn: held for a look-up or a change alone.
  mutable Mutex viewsMutex_;
  std::unordered_map<std::uint64_t, View> textureViews_;

  RenderDevice device_;
  LayerPipeline pipeline_;
  OutputPair outputs_;
  RuntimeTextureHold syncHold_;
  OutputConfiguration output_{};
  std::atomic<bool> ready_{false};
};

}  // namespace ombrel
