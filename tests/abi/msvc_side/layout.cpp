#include "layout_facts.h"

namespace {

// The headset's bases, in the order that is given for it. What they add of their own comes later in memory.
struct TrackingListener {
  virtual void OnTrackingUpdated() = 0;
};
struct FramerateListener {
  virtual void OnFramerateUpdated(uint32_t framesPerSecond) = 0;
};
struct Headset : vr::ITrackedDeviceServerDriver, vr::IVRDisplayComponent, TrackingListener, FramerateListener {};

Headset* AsHeadset(void* device) { return static_cast<Headset*>(static_cast<vr::ITrackedDeviceServerDriver*>(device)); }

static_assert(sizeof(vr::DriverPose_t) == 280, "");
static_assert(sizeof(vr::VREvent_t) == 48, "");
static_assert(sizeof(vr::DriverDirectMode_FrameTiming) == 20, "");

}  // namespace

extern "C" {

void* MsvcHeadsetDisplayBase(void* device) { return static_cast<vr::IVRDisplayComponent*>(AsHeadset(device)); }

void MsvcHeadsetCallTrackingListener(void* device) {
  static_cast<TrackingListener*>(AsHeadset(device))->OnTrackingUpdated();
}

void MsvcHeadsetCallFramerateListener(void* device, uint32_t framesPerSecond) {
  static_cast<FramerateListener*>(AsHeadset(device))->OnFramerateUpdated(framesPerSecond);
}

const LayoutFact* MsvcLayoutFacts(uint32_t* count) {
  *count = sizeof(layout::kFacts) / sizeof(layout::kFacts[0]);
  return layout::kFacts;
}
}
