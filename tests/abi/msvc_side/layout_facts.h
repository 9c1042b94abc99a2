#pragma once

#include <openvr_driver.h>
#include <stddef.h>

#include "calls.h"

// Of the structures that cross the boundary. Both compilers make this list, each for itself.
namespace layout {

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

}  // namespace layout
