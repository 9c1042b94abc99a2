#include "runtime/fake_runtime.h"

namespace bench {
namespace {

constexpr vr::DriverHandle_t kDriverHandle = 0x100000001;

}  // namespace

FakeRuntime::FakeRuntime(const std::string& driverName)
    : host_(recorder_),
      settings_(recorder_),
      properties_(recorder_),
      input_(recorder_),
      log_(recorder_),
      manager_(recorder_, driverName, kDriverHandle),
      resources_(recorder_, driverName) {}

void FakeRuntime::Withhold(const std::string& interfaceVersion) {
  const std::lock_guard lock(mutex_);
  withheld_.insert(interfaceVersion);
}

void FakeRuntime::Provide(const std::string& interfaceVersion) {
  const std::lock_guard lock(mutex_);
  withheld_.erase(interfaceVersion);
}

std::vector<std::string> FakeRuntime::RequestedInterfaces() const {
  const std::lock_guard lock(mutex_);
  return requested_;
}

void* FakeRuntime::Find(const std::string& interfaceVersion) {
  // Through each interface's own type: what the driver receives is a pointer to that base.
  const struct {
    const char* version;
    void* address;
  } interfaces[] = {
      {vr::IVRServerDriverHost_Version, static_cast<vr::IVRServerDriverHost*>(&host_)},
      {vr::IVRSettings_Version, static_cast<vr::IVRSettings*>(&settings_)},
      {vr::IVRProperties_Version, static_cast<vr::IVRProperties*>(&properties_)},
      {vr::IVRDriverInput_Version, static_cast<vr::IVRDriverInput*>(&input_)},
      {vr::IVRDriverLog_Version, static_cast<vr::IVRDriverLog*>(&log_)},
      {vr::IVRDriverManager_Version, static_cast<vr::IVRDriverManager*>(&manager_)},
      {vr::IVRResources_Version, static_cast<vr::IVRResources*>(&resources_)},
  };
  for (const auto& candidate : interfaces) {
    if (interfaceVersion == candidate.version) {
      return candidate.address;
    }
  }
  return nullptr;
}

void* FakeRuntime::GetGenericInterface(const char* pchInterfaceVersion, vr::EVRInitError* peError) {
  const std::string version = pchInterfaceVersion != nullptr ? pchInterfaceVersion : "";
  void* found = nullptr;
  if (recorder_.KeepsNothing()) {
    found = Find(version);
  } else {
    {
      const std::lock_guard lock(mutex_);
      requested_.push_back(version);
      found = withheld_.contains(version) ? nullptr : Find(version);
    }
    recorder_.Enter("IVRDriverContext.GetGenericInterface", {{"version", version}, {"found", found != nullptr}});
  }
  if (peError != nullptr) {
    *peError = found != nullptr ? vr::VRInitError_None : vr::VRInitError_Init_InterfaceNotFound;
  }
  return found;
}

vr::DriverHandle_t FakeRuntime::GetDriverHandle() {
  recorder_.Enter("IVRDriverContext.GetDriverHandle");
  return kDriverHandle;
}

}  // namespace bench
