#include "devices/fake_sensor_device.h"

#include <array>

#include "context/component_name.h"
#include "context/device_properties.h"
#include "context/driver_log.h"
#include "platform/guarded.h"

namespace ombrel {
namespace {

static_assert(sizeof(vr::DriverPose_t) == 280);

// qDriverFromHeadRotation stays the zero quaternion: compatibility.md, C30.
vr::DriverPose_t FixedPose() {
  vr::DriverPose_t pose{};
  pose.qWorldFromDriverRotation.w = 1.0;
  pose.vecPosition[2] = 3.0;
  pose.qRotation.w = 1.0;
  pose.result = vr::TrackingResult_Running_OK;
  pose.poseIsValid = true;
  pose.deviceIsConnected = true;
  return pose;
}

}  // namespace

FakeSensorDevice::FakeSensorDevice(vr::IVRServerDriverHost* host, const char* modelNumber, const char* serialNumber)
    : pose_(FixedPose()), host_(host), modelNumber_(modelNumber), serialNumber_(serialNumber) {}

vr::EVRInitError FakeSensorDevice::Activate(std::uint32_t unObjectId) {
  Guarded([&] {
    Log("Activate fake sensor %d \n", static_cast<int>(unObjectId));
    propertyContainer_ = ContainerOf(unObjectId);
    const std::array<DeviceProperty, 11> properties{{
        {vr::Prop_FieldOfViewLeftDegrees_Float, 80.0F},
        {vr::Prop_FieldOfViewRightDegrees_Float, 80.0F},
        {vr::Prop_FieldOfViewTopDegrees_Float, 80.0F},
        {vr::Prop_FieldOfViewBottomDegrees_Float, 80.0F},
        {vr::Prop_TrackingRangeMinimumMeters_Float, 0.0F},
        {vr::Prop_TrackingRangeMaximumMeters_Float, 12.0F},
        {vr::Prop_DeviceClass_Int32, std::int32_t{vr::TrackedDeviceClass_TrackingReference}},
        {vr::Prop_CurrentUniverseId_Uint64, std::uint64_t{1}},  // compatibility.md, C29
        {vr::Prop_ModelNumber_String, modelNumber_.c_str()},
        {vr::Prop_SerialNumber_String, serialNumber_.c_str()},
        {vr::Prop_RenderModelName_String, "lh_basestation_vive"},
    }};
    WriteProperties(propertyContainer_, properties);
  });
  deviceIndex_ = unObjectId;
  return vr::VRInitError_None;
}

void FakeSensorDevice::Deactivate() { Log("Fake sensor driver deactivated: %s \n", modelNumber_.c_str()); }

void* FakeSensorDevice::GetComponent(const char* pchComponentNameAndVersion) {
  const bool isDevice = IsComponentNamed(pchComponentNameAndVersion, vr::ITrackedDeviceServerDriver_Version);
  return isDevice ? static_cast<vr::ITrackedDeviceServerDriver*>(this) : nullptr;
}

void FakeSensorDevice::PushPose() {
  const std::uint32_t index = deviceIndex_;
  if (index != vr::k_unTrackedDeviceIndexInvalid) host_->TrackedDevicePoseUpdated(index, pose_, sizeof(pose_));
}

}  // namespace ombrel
