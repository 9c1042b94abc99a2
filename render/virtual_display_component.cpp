#include "render/virtual_display_component.h"

#include "platform/clock.h"
#include "platform/guarded.h"

namespace ombrel {

VirtualDisplayComponent::VirtualDisplayComponent(OmbrelCore& core, vr::IVRServerDriverHost* host)
    : core_(core), host_(host) {}

void VirtualDisplayComponent::Present(const vr::PresentInfo_t* pPresentInfo, std::uint32_t /*unPresentInfoSize*/) {
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return;
  Guarded([&] { core_.Frames().HandOffTexture(pPresentInfo->backbufferTextureHandle); });
  ++presents_;
}

void VirtualDisplayComponent::WaitForPresent() {
  vr::IVRServerDriverHost* host = nullptr;
  {
    const SubmissionGate::Pass pass(core_.Calls());
    if (!pass) return;
    Guarded([&] { core_.Pacer().WaitForNextFrame(); });
    lastVsync_ = PerformanceCounter();
    host = host_;
  }
  // Without the pass: a runtime that lets this call wait for Cleanup must not have Cleanup wait for this call.
  Guarded([&] { host->VsyncEvent(0.0); });
}

bool VirtualDisplayComponent::GetTimeSinceLastVsync(float* pfSecondsSinceLastVsync, std::uint64_t* pulFrameCounter) {
  *pfSecondsSinceLastVsync = 0.0F;
  *pulFrameCounter = 0;
  const SubmissionGate::Pass pass(core_.Calls());
  if (!pass) return true;
  const auto elapsed = static_cast<double>(PerformanceCounter() - lastVsync_);
  *pfSecondsSinceLastVsync = static_cast<float>(elapsed / static_cast<double>(PerformanceFrequency()));
  *pulFrameCounter = presents_;
  return true;
}

}  // namespace ombrel
