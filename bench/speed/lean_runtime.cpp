#include "lean_runtime.h"

#include <cstring>

namespace bench::speed {

std::vector<vr::ITrackedDeviceServerDriver*> LeanHost::Devices() {
  const std::scoped_lock lock(mutex_);
  return devices_;
}

bool LeanHost::TrackedDeviceAdded(const char*, vr::ETrackedDeviceClass, vr::ITrackedDeviceServerDriver* device) {
  const std::scoped_lock lock(mutex_);
  devices_.push_back(device);
  return true;
}

vr::EVRInputError LeanInput::CreateBooleanComponent(vr::PropertyContainerHandle_t, const char*,
                                                    vr::VRInputComponentHandle_t* handle) {
  *handle = ++made_;
  return vr::VRInputError_None;
}

vr::EVRInputError LeanInput::CreateScalarComponent(vr::PropertyContainerHandle_t, const char*,
                                                   vr::VRInputComponentHandle_t* handle, vr::EVRScalarType,
                                                   vr::EVRScalarUnits) {
  *handle = ++made_;
  lastScalar_ = *handle;
  return vr::VRInputError_None;
}

vr::EVRInputError LeanInput::CreateHapticComponent(vr::PropertyContainerHandle_t, const char*,
                                                   vr::VRInputComponentHandle_t* handle) {
  *handle = ++made_;
  return vr::VRInputError_None;
}

void* LeanRuntime::GetGenericInterface(const char* version, vr::EVRInitError* error) {
  if (error != nullptr) *error = vr::VRInitError_None;
  if (std::strcmp(version, vr::IVRServerDriverHost_Version) == 0) return static_cast<vr::IVRServerDriverHost*>(&host);
  if (std::strcmp(version, vr::IVRDriverInput_Version) == 0) return static_cast<vr::IVRDriverInput*>(&input);
  return rest.GetGenericInterface(version, error);
}

}  // namespace bench::speed
