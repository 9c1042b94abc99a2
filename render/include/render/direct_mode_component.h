#pragma once

#include <openvr_driver.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "link/ombrel_core.h"
#include "platform/seqlock.h"
#include "render/headset_renderer.h"
#include "render/swap_texture_list.h"

namespace ombrel {

// Through this the runtime gets textures to render into, submits eye layers and presents them. Textures may be made and
// destroyed on any of the runtime's threads, a frame is submitted and presented on one. Calls that may wait say so.
class DirectModeComponent : public vr::IVRDriverDirectModeComponent {
 public:
  // An hour of frames that nobody took would take longer to draw than a graphics driver waits for anything. Layers are
  // opaque and each covers those before it, so that nobody misses the oldest.
  static constexpr std::size_t kMostLayers = 256;

  // Both must outlive the component.
  DirectModeComponent(OmbrelCore& core, ISwapTextureDevice& textures);

  void CreateSwapTextureSet(std::uint32_t unPid, const SwapTextureSetDesc_t* pSwapTextureSetDesc,
                            vr::SharedTextureHandle_t (*pSharedTextureHandles)[3]) override;
  void DestroySwapTextureSet(vr::SharedTextureHandle_t sharedTextureHandle) override;
  void DestroyAllSwapTextureSets(std::uint32_t unPid) override;
  void GetNextSwapTextureSetIndex(vr::SharedTextureHandle_t sharedTextureHandles[2],
                                  std::uint32_t (*pIndices)[2]) override;
  void SubmitLayer(const SubmitLayerPerEye_t (&perEye)[2], const vr::HmdMatrix34_t* pPose) override;
  // Waits for the sync texture and for the next output, at most a frame period (and never over a second) each. The first
  // frame of a connection draws the layers that were submitted while there was none, of which the newest kMostLayers are
  // kept.
  void Present(vr::SharedTextureHandle_t syncTexture) override;
  // Waits for the end of the frame period, at most a second.
  void PostPresent() override;
  void GetFrameTiming(vr::DriverDirectMode_FrameTiming* pFrameTiming) override;

 protected:
  ~DirectModeComponent() = default;

 private:
  OmbrelCore& core_;
  ISwapTextureDevice& textures_;
  SwapTextureList swapTextures_;
  std::atomic<std::uint32_t> nextSetId_{0};
  std::vector<LayerRecord> layers_;
  EyeBounds bounds_{};  // of every layer of the frame
  FramePose framePose_{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  std::uint32_t presentIndex_ = 0;  // cycles 0, 1, 2
  SeqLock<vr::DriverDirectMode_FrameTiming> frameTiming_;
};

}  // namespace ombrel
