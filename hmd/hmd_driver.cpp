#include "hmd/hmd_driver.h"

#include <array>
#include <mutex>
#include <utility>

#include "context/component_name.h"
#include "context/device_properties.h"
#include "context/driver_context.h"
#include "context/driver_log.h"
#include "context/settings.h"
#include "platform/clock.h"
#include "platform/guarded.h"

namespace ombrel {
namespace {

static_assert(sizeof(vr::DriverPose_t) == 280);

constexpr std::uint32_t kFormatR8G8B8A8Unorm = 28;
constexpr std::uint64_t kUniverseId = 18;  // compatibility.md, C29

}  // namespace

HMDDriver::HMDDriver(std::unique_ptr<IFrameRenderer> renderer)
    : host_(Context().ServerDriverHost()), core_(std::move(renderer)) {
  RaiseTimerResolution();
  core_.SetUp();
  core_.Renderer().CreateDevice();
  core_.Client().AddListener(static_cast<ITrackingUpdatedListener*>(this));
  core_.Client().AddListener(static_cast<IFramerateUpdatedListener*>(this));
  // Behind the headset: a pose goes to the runtime before anybody waits for the frame gate.
  core_.Client().AddListener(static_cast<ITrackingUpdatedListener*>(&core_));
  if (Context().Settings() != nullptr) {
    Log("Using settings values\n");
    ApplySettings();
  }
  PublishPose();
  LogConfiguration();
}

void HMDDriver::ApplySettings() {
  const std::int32_t width = ReadInt32Setting("windowWidth");
  const std::int32_t height = ReadInt32Setting("windowHeight");
  geometry_ = ScaledGeometry(width, height, ReadInt32Setting("renderScale"));
  const std::int32_t x = ReadInt32Setting("RotationOffsetXDeg");
  const std::int32_t y = ReadInt32Setting("RotationOffsetYDeg");
  const std::int32_t z = ReadInt32Setting("RotationOffsetZDeg");
  rotationOffsets_ = MakeRotationOffsets(x, y, z);
}

void HMDDriver::LogConfiguration() const {
  Log("driver_ombrel: Serial Number: %s\n", serialNumber_.c_str());
  Log("driver_ombrel: Model Number: %s\n", modelNumber_.c_str());
  Log("driver_ombrel: Window: %d %d %d %d\n", geometry_.windowX, geometry_.windowY, geometry_.windowWidth,
      geometry_.windowHeight);
  Log("driver_ombrel: Render Target: %d %d\n", geometry_.renderTargetWidth, geometry_.renderTargetHeight);
  Log("driver_ombrel: Seconds from Vsync to Photons: %f\n", static_cast<double>(secondsFromVsyncToPhotons_));
  Log("driver_ombrel: Display Frequency: %f\n", static_cast<double>(displayFrequency_));
  Log("driver_ombrel: IPD: %f\n", static_cast<double>(ipdMeters_));
}

vr::EVRInitError HMDDriver::Activate(std::uint32_t unObjectId) {
  // Guarded apart: what throws does not keep the headset from the rest.
  Guarded([&] { propertyContainer_ = ContainerOf(unObjectId); });
  Guarded([&] { Log("HMD activated with id %d \n", static_cast<int>(unObjectId)); });
  deviceIndex_ = unObjectId;
  Guarded([&] { WriteHeadsetProperties(); });
  Guarded([&] {
    core_.PrepareOutput({.format = kFormatR8G8B8A8Unorm,
                         .width = static_cast<std::uint32_t>(geometry_.windowWidth),
                         .height = static_cast<std::uint32_t>(geometry_.windowHeight),
                         .invertY = 0});
  });
  Guarded([&] { CreateProximityInput(); });
  Guarded([&] { PublishPose(); });
  return vr::VRInitError_None;
}

void HMDDriver::WriteHeadsetProperties() {
  const std::lock_guard lock(frequencyMutex_);
  const std::array<DeviceProperty, 10> properties{{
      {vr::Prop_IsOnDesktop_Bool, false},
      {vr::Prop_ContainsProximitySensor_Bool, true},
      {vr::Prop_UserIpdMeters_Float, ipdMeters_},
      {vr::Prop_UserHeadToEyeDepthMeters_Float, 0.0F},
      {vr::Prop_DisplayFrequency_Float, displayFrequency_},
      {vr::Prop_SecondsFromVsyncToPhotons_Float, secondsFromVsyncToPhotons_},
      {vr::Prop_DeviceClass_Int32, std::int32_t{vr::TrackedDeviceClass_HMD}},
      {vr::Prop_CurrentUniverseId_Uint64, kUniverseId},
      {vr::Prop_ModelNumber_String, modelNumber_.c_str()},
      {vr::Prop_SerialNumber_String, serialNumber_.c_str()},
  }};
  WriteProperties(propertyContainer_, properties);
}

void HMDDriver::CreateProximityInput() {
  vr::IVRDriverInput* input = Context().DriverInput();
  if (input == nullptr) return;
  vr::VRInputComponentHandle_t handle = vr::k_ulInvalidInputComponentHandle;
  const vr::EVRInputError error = input->CreateBooleanComponent(propertyContainer_, "/proximity", &handle);
  if (error == vr::VRInputError_None) {
    proximityComponent_ = handle;
    input->UpdateBooleanComponent(handle, true, 0.0);
  } else {
    proximityComponent_ = vr::k_ulInvalidInputComponentHandle;
    Log("Error while creating proximity sensor: %d \n", static_cast<int>(error));
  }
}

void HMDDriver::ReportWorn() {
  const vr::VRInputComponentHandle_t proximity = proximityComponent_;
  if (!IsActivated() || proximity == vr::k_ulInvalidInputComponentHandle) return;
  if (vr::IVRDriverInput* input = Context().DriverInput()) input->UpdateBooleanComponent(proximity, true, 0.0);
}

void HMDDriver::Deactivate() {
  Log("Driver deactivated: %s \n", modelNumber_.c_str());
  deviceIndex_ = vr::k_unTrackedDeviceIndexInvalid;
}

void* HMDDriver::GetComponent(const char* name) {
  if (IsComponentNamed(name, vr::IVRDisplayComponent_Version)) return static_cast<vr::IVRDisplayComponent*>(this);
  if (IsComponentNamed(name, vr::ITrackedDeviceServerDriver_Version)) {
    return static_cast<vr::ITrackedDeviceServerDriver*>(this);
  }
  return nullptr;
}

void HMDDriver::DebugRequest(const char* /*pchRequest*/, char* pchResponseBuffer, std::uint32_t unResponseBufferSize) {
  if (unResponseBufferSize != 0) pchResponseBuffer[0] = '\0';
}

void HMDDriver::OnTrackingUpdated() {
  if (IsActivated()) PublishPose();
}

void HMDDriver::OnFramerateUpdated(std::uint32_t framesPerSecond) {
  const auto frequency = static_cast<float>(static_cast<std::int32_t>(framesPerSecond));  // compatibility.md, C11
  {
    const std::lock_guard lock(frequencyMutex_);
    displayFrequency_ = frequency;
    const std::array<DeviceProperty, 1> properties{{{vr::Prop_DisplayFrequency_Float, frequency}}};
    WriteProperties(propertyContainer_, properties);
  }
  Log("Updating headset fps, new value: %f \n", static_cast<double>(frequency));
}

void HMDDriver::PublishPose() {
  // Asked in this order, so that data whose arrival is known is in the record.
  const bool hasTrackingData = core_.Client().HasTrackingData();
  const vr::DriverPose_t pose = BuildHeadPose(core_.Client().PublishedPose(), hasTrackingData, rotationOffsets_);
  pose_.Store(pose);
  const std::uint32_t index = deviceIndex_;
  if (index != vr::k_unTrackedDeviceIndexInvalid) host_->TrackedDevicePoseUpdated(index, pose, sizeof(pose));
}

}  // namespace ombrel
