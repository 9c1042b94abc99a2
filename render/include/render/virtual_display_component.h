#pragma once

#include <openvr_driver.h>

#include <atomic>
#include <cstdint>

#include "link/ombrel_core.h"

namespace ombrel {

// Through this the runtime hands over finished frames and learns of a synthetic vsync. Its calls come on the runtime's
// threads.
class VirtualDisplayComponent : public vr::IVRVirtualDisplay {
 public:
  // Both must outlive the component.
  VirtualDisplayComponent(OmbrelCore& core, vr::IVRServerDriverHost* host);

  // Waits for the texture and for the next output, at most a frame period (and never over a second) each, and then
  // until a pose has come that no frame answers yet, or the link goes down, or Cleanup begins: only a companion that
  // stays connected and sends no poses makes that long.
  void Present(const vr::PresentInfo_t* pPresentInfo, std::uint32_t unPresentInfoSize) override;
  // Waits for the end of the frame period, at most a second; that is the vsync.
  void WaitForPresent() override;
  // Seconds since the last vsync (or the counter's origin, before the first: compatibility.md, C48) and the number of
  // presents; zeros once the link has stopped. Always true.
  bool GetTimeSinceLastVsync(float* pfSecondsSinceLastVsync, std::uint64_t* pulFrameCounter) override;

 protected:
  ~VirtualDisplayComponent() = default;

 private:
  OmbrelCore& core_;
  vr::IVRServerDriverHost* const host_;
  std::atomic<std::uint32_t> presents_{0};
  std::atomic<std::int64_t> lastVsync_{0};  // performance counter
};

}  // namespace ombrel
