#pragma once

#include <openvr_driver.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "link/ombrel_core.h"
#include "platform/sync.h"
#include "render/headset_renderer.h"
#include "render/swap_texture_list.h"

namespace ombrel {

// Through this the runtime gets textures to render into, submits eye layers and presents them, on any of its threads.
// Frames that are presented at the same time are drawn one after the other; nothing else waits for one of them. Calls
// that may wait say so.
class DirectModeComponent : public vr::IVRDriverDirectModeComponent {
 public:
  // Drawing the layers of an hour without a link would exceed the graphics driver's time-out (TDR). Layers are opaque
  // and each covers those before it, so that nobody misses the oldest.
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
  // Waits for the sync texture and for the next output, at most a frame period (and never over a second) each, and
  // likewise for frames that other threads present at the time. The first frame of a connection draws the layers that
  // were submitted while there was none, of which the newest kMostLayers are kept.
  void Present(vr::SharedTextureHandle_t syncTexture) override;
  // Waits for the end of the frame period, at most a second.
  void PostPresent() override;
  void GetFrameTiming(vr::DriverDirectMode_FrameTiming* pFrameTiming) override;

 protected:
  ~DirectModeComponent() = default;

 private:
  struct Frame {
    std::vector<LayerRecord> layers;
    EyeBounds bounds{};  // of every layer of the frame

    void Add(std::uint64_t leftTexture, std::uint64_t rightTexture, const EyeBounds& newest);
  };
  FramePose TakeFrame();
  void FinishFrame(const FramePose& pose);

  OmbrelCore& core_;
  ISwapTextureDevice& textures_;
  Mutex setsMutex_;  // a set comes and goes as a whole
  SwapTextureList swapTextures_;
  std::atomic<std::uint32_t> nextSetId_{0};

  std::array<Frame, 2> frames_;
  Mutex presentMutex_;  // one frame at a time; taken before frameMutex_
  Frame* presented_ = frames_.data();

  Mutex frameMutex_;  // of what follows; held for no longer than copying takes
  Frame* submitted_ = &frames_[1];
  FramePose framePose_{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  std::uint32_t presentIndex_ = 0;  // cycles 0, 1, 2
  vr::DriverDirectMode_FrameTiming frameTiming_;
};

}  // namespace ombrel
