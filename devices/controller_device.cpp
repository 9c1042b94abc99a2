#include "devices/controller_device.h"

#include "context/component_name.h"
#include "context/device_properties.h"
#include "context/driver_context.h"
#include "context/driver_log.h"
#include "devices/controller_pose.h"
#include "platform/guarded.h"

namespace ombrel {
namespace {

constexpr std::uint64_t kSystem = 1ULL << vr::k_EButton_System;
constexpr std::uint64_t kApplicationMenu = 1ULL << vr::k_EButton_ApplicationMenu;
constexpr std::uint64_t kGrip = 1ULL << vr::k_EButton_Grip;
constexpr std::uint64_t kTrackpad = 1ULL << vr::k_EButton_SteamVR_Touchpad;
constexpr std::uint64_t kTrigger = 1ULL << vr::k_EButton_SteamVR_Trigger;

constexpr std::size_t kTrackpadX = 0, kTrackpadY = 1, kTriggerValue = 2;  // in axisComponents_
constexpr float kInitialTrackpadX = 0.8F;
constexpr std::uint64_t kUniverseId = 18;  // compatibility.md, C29

void SendPass(std::span<const InputComponent> components, std::uint64_t mask, bool value) {
  if (mask == 0) return;
  for (const InputComponent& component : components) {
    if ((component.key & mask) != 0) UpdateBooleanInput(component, value);
  }
}

// An axis that is not a number differs from everything, itself included.
bool Differs(const ControllerState::Axis& a, const ControllerState::Axis& b) { return a.x != b.x || a.y != b.y; }

// All else is zero: compatibility.md, C37.
vr::DriverPose_t InitialPose() {
  vr::DriverPose_t pose{};
  pose.qRotation.w = 1.0;
  return pose;
}

}  // namespace

ControllerDevice::ControllerDevice(OmbrelCore* link, vr::IVRServerDriverHost* host, std::int32_t controllerId)
    : buttonComponents_{{{kSystem, "/input/system/click"},
                         {kApplicationMenu, "/input/application_menu/click"},
                         {kGrip, "/input/grip/click"},
                         {kTrackpad, "/input/trackpad/click"},
                         {kTrigger, "/input/trigger/click"}}},
      touchComponents_{{{kTrackpad, "/input/trackpad/touch"}}},
      axisComponents_{{{0, "/input/trackpad/x"}, {1, "/input/trackpad/y"}, {10, "/input/trigger/value"}}},
      pose_(InitialPose()),
      host_(host),
      controllerId_(controllerId),
      link_(link),
      serialNumber_("OmbrelControllerV02ID" + std::to_string(controllerId)) {}

vr::EVRInitError ControllerDevice::Activate(std::uint32_t unObjectId) {
  Guarded([&] {
    Log("Controller: %s activated with id: %d\n", serialNumber_.c_str(), static_cast<int>(unObjectId));
    propertyContainer_ = ContainerOf(unObjectId);
    const std::array<DeviceProperty, 6> properties{{
        {vr::Prop_DeviceClass_Int32, std::int32_t{vr::TrackedDeviceClass_Controller}},
        {vr::Prop_CurrentUniverseId_Uint64, kUniverseId},
        {vr::Prop_ModelNumber_String, modelNumber_.c_str()},
        {vr::Prop_SerialNumber_String, serialNumber_.c_str()},
        {vr::Prop_RenderModelName_String, "vr_controller_vive_1_5"},
        {vr::Prop_InputProfilePath_String, "{ombrel}/input/controller_profile.json"},
    }};
    WriteProperties(propertyContainer_, properties);
    CreateInputs();
  });
  deviceIndex_ = unObjectId;  // from here on records take effect
  // lastState_ does not know of it: compatibility.md, C35.
  Guarded([&] { UpdateScalarInput(axisComponents_[kTrackpadX], kInitialTrackpadX); });
  return vr::VRInitError_None;
}

void ControllerDevice::CreateInputs() {
  for (InputComponent& component : buttonComponents_) CreateBooleanInput(propertyContainer_, component);
  for (InputComponent& component : touchComponents_) CreateBooleanInput(propertyContainer_, component);
  CreateScalarInput(propertyContainer_, axisComponents_[kTrackpadX], vr::VRScalarUnits_NormalizedTwoSided);
  CreateScalarInput(propertyContainer_, axisComponents_[kTrackpadY], vr::VRScalarUnits_NormalizedTwoSided);
  CreateScalarInput(propertyContainer_, axisComponents_[kTriggerValue], vr::VRScalarUnits_NormalizedOneSided);
  if (vr::IVRDriverInput* input = Context().DriverInput()) {
    vr::VRInputComponentHandle_t handle = hapticComponent_;
    input->CreateHapticComponent(propertyContainer_, "/output/haptic", &handle);
    hapticComponent_ = handle;
  }
}

void* ControllerDevice::GetComponent(const char* pchComponentNameAndVersion) {
  const bool isDevice = IsComponentNamed(pchComponentNameAndVersion, vr::ITrackedDeviceServerDriver_Version);
  return isDevice ? static_cast<vr::ITrackedDeviceServerDriver*>(this) : nullptr;
}

void ControllerDevice::UpdateFromRecord(const ControllerUpdate& record) {
  const std::uint32_t index = deviceIndex_;
  if (index == vr::k_unTrackedDeviceIndexInvalid) return;
  const vr::DriverPose_t pose = BuildControllerPose(record);
  pose_.Store(pose);
  host_->TrackedDevicePoseUpdated(index, pose, sizeof(pose));
  SendButtons(record.state);
  SendAxes(record.state);
  lastState_ = record.state;
}

// Transitions only: all that went down, then all that came up, and the touches likewise.
void ControllerDevice::SendButtons(const ControllerState& state) const {
  const std::uint64_t pressed = state.pressedButtons, changedPressed = lastState_.pressedButtons ^ pressed;
  const std::uint64_t touched = state.touchedButtons, changedTouched = lastState_.touchedButtons ^ touched;
  SendPass(buttonComponents_, pressed & changedPressed, true);
  SendPass(buttonComponents_, ~pressed & changedPressed, false);
  SendPass(touchComponents_, touched & changedTouched, true);
  SendPass(touchComponents_, ~touched & changedTouched, false);
}

// When what goes out: compatibility.md, C36.
void ControllerDevice::SendAxes(const ControllerState& state) const {
  const ControllerState::Axis& trackpad = state.axes[0];
  const ControllerState::Axis& trigger = state.axes[1];
  if (Differs(trackpad, lastState_.axes[0])) {
    UpdateScalarInput(axisComponents_[kTrackpadX], trackpad.x);
    UpdateScalarInput(axisComponents_[kTrackpadY], trackpad.y);
  }
  if (Differs(trigger, lastState_.axes[1])) UpdateScalarInput(axisComponents_[kTriggerValue], trigger.x);
}

}  // namespace ombrel
