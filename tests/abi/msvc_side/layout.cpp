#include <openvr_driver.h>
#include <stddef.h>

#include "calls.h"

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

using DirectMode = vr::IVRDriverDirectModeComponent;

constexpr LayoutFact kFacts[] = {
    {"DriverPose_t", sizeof(vr::DriverPose_t)},
    {"DriverPose_t.qRotation", offsetof(vr::DriverPose_t, qRotation)},
    {"DriverPose_t.result", offsetof(vr::DriverPose_t, result)},
    {"DriverPose_t.poseIsValid", offsetof(vr::DriverPose_t, poseIsValid)},
    {"DriverPose_t.deviceIsConnected", offsetof(vr::DriverPose_t, deviceIsConnected)},
    {"VREvent_t", sizeof(vr::VREvent_t)},
    {"VREvent_t.data", offsetof(vr::VREvent_t, data)},
    {"VREvent_HapticVibration_t.fDurationSeconds", offsetof(vr::VREvent_HapticVibration_t, fDurationSeconds)},
    {"DriverDirectMode_FrameTiming", sizeof(vr::DriverDirectMode_FrameTiming)},
    {"DistortionCoordinates_t", sizeof(vr::DistortionCoordinates_t)},
    {"SwapTextureSetDesc_t", sizeof(DirectMode::SwapTextureSetDesc_t)},
    {"SubmitLayerPerEye_t", sizeof(DirectMode::SubmitLayerPerEye_t)},
    {"SubmitLayerPerEye_t.bounds", offsetof(DirectMode::SubmitLayerPerEye_t, bounds)},
    {"PropertyWrite_t", sizeof(vr::PropertyWrite_t)},
    {"PropertyWrite_t.pvBuffer", offsetof(vr::PropertyWrite_t, pvBuffer)},
    {"PropertyWrite_t.unTag", offsetof(vr::PropertyWrite_t, unTag)},
    {"HmdMatrix34_t", sizeof(vr::HmdMatrix34_t)},
    {"VRTextureBounds_t", sizeof(vr::VRTextureBounds_t)},
};

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
  *count = sizeof(kFacts) / sizeof(kFacts[0]);
  return kFacts;
}
}
