#include "support/fake_runtime.h"

#include <cstring>

namespace ombrel::test {
namespace {

template <typename Value>
Value ValueIn(const vr::PropertyWrite_t& write) {
  Value value{};
  std::memcpy(&value, write.pvBuffer, sizeof(value));
  return value;
}

std::string ValueText(const vr::PropertyWrite_t& write) {
  switch (write.unTag) {
    case vr::k_unBoolPropertyTag:
      return ValueIn<bool>(write) ? "true" : "false";
    case vr::k_unFloatPropertyTag:
      return std::to_string(ValueIn<float>(write));
    case vr::k_unInt32PropertyTag:
      return std::to_string(ValueIn<std::int32_t>(write));
    case vr::k_unUint64PropertyTag:
      return std::to_string(ValueIn<std::uint64_t>(write));
    case vr::k_unStringPropertyTag:
      return static_cast<const char*>(write.pvBuffer);
    default:
      return "?";
  }
}

std::string LineOf(vr::PropertyContainerHandle_t container, const vr::PropertyWrite_t& write) {
  std::string line = std::to_string(container) + ": " + std::to_string(write.prop) + " " + std::to_string(write.unTag) +
                     " " + std::to_string(write.unBufferSize) + " " + ValueText(write);
  if (write.writeType != vr::PropertyWrite_Set) line += " not set";
  return line;
}

}  // namespace

bool FakeSettings::GetBool(const char* section, const char* key, vr::EVRSettingsError* error) {
  const auto found = values.find(std::string(section) + "/" + key);
  if (error != nullptr) *error = found != values.end() ? boolError : vr::VRSettingsError_UnsetSettingHasNoDefault;
  return found != values.end() && found->second != 0;
}

std::int32_t FakeSettings::GetInt32(const char* section, const char* key, vr::EVRSettingsError* error) {
  const auto found = values.find(std::string(section) + "/" + key);
  if (error != nullptr) ++numberErrorsAskedFor;
  return found != values.end() ? found->second : 0;
}

vr::ETrackedPropertyError FakeProperties::WritePropertyBatch(vr::PropertyContainerHandle_t container,
                                                             vr::PropertyWrite_t* batch, std::uint32_t count) {
  if (count != 1) lines.Add("a batch of " + std::to_string(count));
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::string line = LineOf(container, batch[i]);
    if (onLine) onLine(line);
    lines.Add(line);
  }
  return vr::TrackedProp_Success;
}

void FakeServerDriverHost::TrackedDeviceDisplayTransformUpdated(std::uint32_t, vr::HmdMatrix34_t, vr::HmdMatrix34_t) {
  updates.Add("eyes");
}

void FakeServerDriverHost::TrackedDevicePoseUpdated(std::uint32_t device, const vr::DriverPose_t& pose,
                                                    std::uint32_t size) {
  {
    const std::lock_guard guard(mutex_);
    lastPose_ = pose;
  }
  updates.Add(std::to_string(device) + " " + std::to_string(size));
  if (onPose) onPose();
}

void FakeServerDriverHost::VsyncEvent(double offset) {
  vsyncs.Add(std::to_string(offset));
  if (onVsync) onVsync();
}

vr::DriverPose_t FakeServerDriverHost::LastPose() const {
  const std::lock_guard guard(mutex_);
  return lastPose_;
}

class FakeDriverInput final : public vr::IVRDriverInput {
 public:
  explicit FakeDriverInput(FakeRuntime& runtime) : runtime_(runtime) {}

  vr::EVRInputError CreateBooleanComponent(vr::PropertyContainerHandle_t container, const char* name,
                                           vr::VRInputComponentHandle_t* handle) override {
    runtime_.input.Add("Create " + std::to_string(container) + " " + name);
    if (runtime_.onCreateInput) runtime_.onCreateInput(handle);
    if (runtime_.createInputResult == vr::VRInputError_None) *handle = 5;
    return runtime_.createInputResult;
  }
  vr::EVRInputError UpdateBooleanComponent(vr::VRInputComponentHandle_t component, bool value, double offset) override {
    runtime_.input.Add("Update " + std::to_string(component) + " " + (value ? "true" : "false") + " " +
                       std::to_string(offset));
    return vr::VRInputError_None;
  }
  vr::EVRInputError CreateScalarComponent(vr::PropertyContainerHandle_t, const char*, vr::VRInputComponentHandle_t*,
                                          vr::EVRScalarType, vr::EVRScalarUnits) override {
    return vr::VRInputError_None;
  }
  vr::EVRInputError UpdateScalarComponent(vr::VRInputComponentHandle_t, float, double) override {
    return vr::VRInputError_None;
  }
  vr::EVRInputError CreateHapticComponent(vr::PropertyContainerHandle_t, const char*,
                                          vr::VRInputComponentHandle_t*) override {
    return vr::VRInputError_None;
  }
  vr::EVRInputError CreateSkeletonComponent(vr::PropertyContainerHandle_t, const char*, const char*, const char*,
                                            const vr::VRBoneTransform_t*, std::uint32_t,
                                            vr::VRInputComponentHandle_t*) override {
    return vr::VRInputError_None;
  }
  vr::EVRInputError UpdateSkeletonComponent(vr::VRInputComponentHandle_t, const vr::VRBoneTransform_t*,
                                            std::uint32_t) override {
    return vr::VRInputError_None;
  }

 private:
  FakeRuntime& runtime_;
};

class FakeDriverManager final : public vr::IVRDriverManager {
 public:
  std::uint32_t GetDriverCount() const override { return 1; }
  std::uint32_t GetDriverName(vr::DriverId_t, char*, std::uint32_t) override { return 0; }
  vr::DriverHandle_t GetDriverHandle(const char*) override { return 1; }
};

class FakeResources final : public vr::IVRResources {
 public:
  std::uint32_t LoadSharedResource(const char*, char*, std::uint32_t) override { return 0; }
  std::uint32_t GetResourceFullPath(const char*, const char*, char*, std::uint32_t) override { return 0; }
};

FakeRuntime::FakeRuntime()
    : driverInput_(std::make_unique<FakeDriverInput>(*this)),
      driverManager_(std::make_unique<FakeDriverManager>()),
      resources_(std::make_unique<FakeResources>()) {}

FakeRuntime::~FakeRuntime() = default;

void* FakeRuntime::GetGenericInterface(const char* version, vr::EVRInitError* error) {
  const std::map<std::string, void*> offered{
      {"IVRServerDriverHost_005", static_cast<vr::IVRServerDriverHost*>(&host)},
      {"IVRSettings_002", static_cast<vr::IVRSettings*>(&settings)},
      {"IVRProperties_001", static_cast<vr::IVRProperties*>(&properties)},
      {"IVRDriverLog_001", static_cast<vr::IVRDriverLog*>(&log)},
      {"IVRDriverManager_001", static_cast<vr::IVRDriverManager*>(driverManager_.get())},
      {"IVRResources_001", static_cast<vr::IVRResources*>(resources_.get())},
      {"IVRDriverInput_001", static_cast<vr::IVRDriverInput*>(driverInput_.get())},
  };
  asked.Add(version);
  const auto found = offered.find(version);
  const bool given = found != offered.end() && !withheld.contains(version);
  if (error != nullptr) *error = given ? vr::VRInitError_None : vr::VRInitError_Init_InterfaceNotFound;
  return given ? found->second : nullptr;
}

}  // namespace ombrel::test
