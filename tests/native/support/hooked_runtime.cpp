#include "support/hooked_runtime.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace ombrel::test {
namespace {

constexpr std::array<std::string_view, 12> kPaths{
    "",
    "/proximity",
    "/input/system/click",
    "/input/application_menu/click",
    "/input/grip/click",
    "/input/trackpad/click",
    "/input/trigger/click",
    "/input/trackpad/touch",
    "/input/trackpad/x",
    "/input/trackpad/y",
    "/input/trigger/value",
    "/output/haptic",
};

template <typename Hook, typename... Arguments>
void Call(const Hook& hook, Arguments&&... arguments) {
  if (hook) hook(std::forward<Arguments>(arguments)...);
}

}  // namespace

vr::VRInputComponentHandle_t HookedRuntime::HandleOf(vr::PropertyContainerHandle_t container, const std::string& path) {
  const auto index = std::ranges::find(kPaths, path) - kPaths.begin();
  return container * 16 + static_cast<std::uint64_t>(index);
}

void* HookedRuntime::GetGenericInterface(const char* version, vr::EVRInitError* error) {
  const std::string_view asked(version);
  if (error != nullptr) *error = vr::VRInitError_None;
  if (asked == vr::IVRServerDriverHost_Version) return static_cast<vr::IVRServerDriverHost*>(this);
  if (asked == vr::IVRSettings_Version) return static_cast<vr::IVRSettings*>(this);
  if (asked == vr::IVRProperties_Version) return static_cast<vr::IVRProperties*>(this);
  if (asked == vr::IVRDriverLog_Version) return static_cast<vr::IVRDriverLog*>(this);
  if (asked == vr::IVRDriverInput_Version) return static_cast<vr::IVRDriverInput*>(this);
  if (asked == vr::IVRDriverManager_Version) return static_cast<vr::IVRDriverManager*>(this);
  if (asked == vr::IVRResources_Version) return static_cast<vr::IVRResources*>(this);
  if (error != nullptr) *error = vr::VRInitError_Init_InterfaceNotFound;
  return nullptr;
}

bool HookedRuntime::TrackedDeviceAdded(const char* /*serial*/, vr::ETrackedDeviceClass deviceClass,
                                       vr::ITrackedDeviceServerDriver* device) {
  Call(onDeviceAdded, deviceClass, device);
  return true;
}

void HookedRuntime::TrackedDevicePoseUpdated(std::uint32_t device, const vr::DriverPose_t& pose, std::uint32_t size) {
  Call(onPose, device, pose, size);
}

void HookedRuntime::Log(const char* message) { Call(onLog, message); }

void HookedRuntime::VsyncEvent(double /*offset*/) { Call(onVsync); }

bool HookedRuntime::PollNextEvent(vr::VREvent_t* event, std::uint32_t /*size*/) {
  return nextEvent && nextEvent(event);
}

bool HookedRuntime::GetBool(const char* /*section*/, const char* /*key*/, vr::EVRSettingsError* error) {
  if (error != nullptr) *error = vr::VRSettingsError_None;
  return isFakeSensorEnabled;
}

std::int32_t HookedRuntime::GetInt32(const char* /*section*/, const char* key, vr::EVRSettingsError* /*error*/) {
  return std::string_view(key) == "hmdMode" ? hmdMode : 0;
}

vr::ETrackedPropertyError HookedRuntime::WritePropertyBatch(vr::PropertyContainerHandle_t container,
                                                            vr::PropertyWrite_t* batch, std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) Call(onProperty, container, batch[i]);
  return vr::TrackedProp_Success;
}

vr::EVRInputError HookedRuntime::CreateBooleanComponent(vr::PropertyContainerHandle_t container, const char* name,
                                                        vr::VRInputComponentHandle_t* handle) {
  *handle = HandleOf(container, name);
  return vr::VRInputError_None;
}

vr::EVRInputError HookedRuntime::UpdateBooleanComponent(vr::VRInputComponentHandle_t handle, bool value,
                                                        double /*offset*/) {
  Call(onBoolean, handle, value);
  return vr::VRInputError_None;
}

vr::EVRInputError HookedRuntime::CreateScalarComponent(vr::PropertyContainerHandle_t container, const char* name,
                                                       vr::VRInputComponentHandle_t* handle, vr::EVRScalarType,
                                                       vr::EVRScalarUnits) {
  *handle = HandleOf(container, name);
  return vr::VRInputError_None;
}

vr::EVRInputError HookedRuntime::UpdateScalarComponent(vr::VRInputComponentHandle_t handle, float value,
                                                       double /*offset*/) {
  Call(onScalar, handle, value);
  return vr::VRInputError_None;
}

vr::EVRInputError HookedRuntime::CreateHapticComponent(vr::PropertyContainerHandle_t container, const char* name,
                                                       vr::VRInputComponentHandle_t* handle) {
  *handle = HandleOf(container, name);
  return vr::VRInputError_None;
}

vr::EVRInputError HookedRuntime::CreateSkeletonComponent(vr::PropertyContainerHandle_t, const char*, const char*,
                                                         const char*, const vr::VRBoneTransform_t*, std::uint32_t,
                                                         vr::VRInputComponentHandle_t*) {
  return vr::VRInputError_None;
}

vr::EVRInputError HookedRuntime::UpdateSkeletonComponent(vr::VRInputComponentHandle_t, const vr::VRBoneTransform_t*,
                                                         std::uint32_t) {
  return vr::VRInputError_None;
}

}  // namespace ombrel::test
