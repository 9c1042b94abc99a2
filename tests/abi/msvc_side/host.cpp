// A runtime whose objects MSVC's rules lay out. Every method reports its own name, so that a call that reaches a wrong
// slot is seen.
#include <openvr_driver.h>

#include "calls.h"

namespace {

uint64_t AsNumber(const void* pointer) { return reinterpret_cast<uint64_t>(pointer); }
bool Same(const char* left, const char* right) {
  while (*left != '\0' && *left == *right) ++left, ++right;
  return *left == *right;
}

class Host final : public vr::IVRServerDriverHost {
 public:
  bool TrackedDeviceAdded(const char* serial, vr::ETrackedDeviceClass deviceClass,
                          vr::ITrackedDeviceServerDriver* driver) override {
    MsvcHostCalled("TrackedDeviceAdded", serial, deviceClass, AsNumber(driver));
    return true;
  }
  void TrackedDevicePoseUpdated(uint32_t device, const vr::DriverPose_t& pose, uint32_t size) override {
    MsvcHostCalled("TrackedDevicePoseUpdated", pose.poseIsValid ? "valid" : "invalid", device, size);
  }
  void VsyncEvent(double) override { MsvcHostCalled("VsyncEvent", "", 0, 0); }
  void VendorSpecificEvent(uint32_t, vr::EVREventType, const vr::VREvent_Data_t&, double) override {
    MsvcHostCalled("VendorSpecificEvent", "", 0, 0);
  }
  bool IsExiting() override {
    MsvcHostCalled("IsExiting", "", 0, 0);
    return false;
  }
  bool PollNextEvent(vr::VREvent_t*, uint32_t size) override {
    MsvcHostCalled("PollNextEvent", "", size, 0);
    return false;
  }
  void GetRawTrackedDevicePoses(float, vr::TrackedDevicePose_t*, uint32_t) override {
    MsvcHostCalled("GetRawTrackedDevicePoses", "", 0, 0);
  }
  void TrackedDeviceDisplayTransformUpdated(uint32_t, vr::HmdMatrix34_t, vr::HmdMatrix34_t) override {
    MsvcHostCalled("TrackedDeviceDisplayTransformUpdated", "", 0, 0);
  }
};

class Settings final : public vr::IVRSettings {
 public:
  const char* GetSettingsErrorNameFromEnum(vr::EVRSettingsError) override { return Unexpected("ErrorName"); }
  bool Sync(bool, vr::EVRSettingsError*) override { return Unexpected("Sync") == nullptr; }
  void SetBool(const char*, const char*, bool, vr::EVRSettingsError*) override { Unexpected("SetBool"); }
  void SetInt32(const char*, const char*, int32_t, vr::EVRSettingsError*) override { Unexpected("SetInt32"); }
  void SetFloat(const char*, const char*, float, vr::EVRSettingsError*) override { Unexpected("SetFloat"); }
  void SetString(const char*, const char*, const char*, vr::EVRSettingsError*) override { Unexpected("SetString"); }
  bool GetBool(const char*, const char* key, vr::EVRSettingsError* error) override {
    MsvcHostCalled("GetBool", key, error != nullptr, 0);
    if (error != nullptr) *error = vr::VRSettingsError_None;
    return true;
  }
  int32_t GetInt32(const char*, const char* key, vr::EVRSettingsError* error) override {
    MsvcHostCalled("GetInt32", key, error != nullptr, 0);
    return 0;
  }
  float GetFloat(const char*, const char*, vr::EVRSettingsError*) override {
    Unexpected("GetFloat");
    return 0;
  }
  void GetString(const char*, const char*, char*, uint32_t, vr::EVRSettingsError*) override { Unexpected("GetString"); }
  void RemoveSection(const char*, vr::EVRSettingsError*) override { Unexpected("RemoveSection"); }
  void RemoveKeyInSection(const char*, const char*, vr::EVRSettingsError*) override { Unexpected("RemoveKey"); }

 private:
  static const char* Unexpected(const char* method) {
    MsvcHostCalled(method, "", 0, 0);
    return nullptr;
  }
};

class Properties final : public vr::IVRProperties {
 public:
  vr::ETrackedPropertyError ReadPropertyBatch(vr::PropertyContainerHandle_t, vr::PropertyRead_t*, uint32_t) override {
    MsvcHostCalled("ReadPropertyBatch", "", 0, 0);
    return vr::TrackedProp_Success;
  }
  vr::ETrackedPropertyError WritePropertyBatch(vr::PropertyContainerHandle_t container, vr::PropertyWrite_t* batch,
                                               uint32_t) override {
    const bool isText = batch->unTag == vr::k_unStringPropertyTag;
    MsvcHostCalled("WritePropertyBatch", isText ? static_cast<const char*>(batch->pvBuffer) : "", container,
                   batch->prop);
    return vr::TrackedProp_Success;
  }
  const char* GetPropErrorNameFromEnum(vr::ETrackedPropertyError) override { return ""; }
  vr::PropertyContainerHandle_t TrackedDeviceToPropertyContainer(vr::TrackedDeviceIndex_t device) override {
    MsvcHostCalled("TrackedDeviceToPropertyContainer", "", device, 0);
    return 0xC0FFEE0000000000 + device;
  }
};

class Input final : public vr::IVRDriverInput {
 public:
  vr::EVRInputError CreateBooleanComponent(vr::PropertyContainerHandle_t container, const char* name,
                                           vr::VRInputComponentHandle_t* handle) override {
    MsvcHostCalled("CreateBooleanComponent", name, container, 0);
    *handle = 0x1234567800000001;
    return vr::VRInputError_None;
  }
  vr::EVRInputError UpdateBooleanComponent(vr::VRInputComponentHandle_t component, bool value, double offset) override {
    MsvcHostCalled("UpdateBooleanComponent", offset == 0.0 ? "now" : "later", component, value);
    return vr::VRInputError_None;
  }
  vr::EVRInputError CreateScalarComponent(vr::PropertyContainerHandle_t, const char*, vr::VRInputComponentHandle_t*,
                                          vr::EVRScalarType, vr::EVRScalarUnits) override {
    return Unexpected("CreateScalarComponent");
  }
  vr::EVRInputError UpdateScalarComponent(vr::VRInputComponentHandle_t, float, double) override {
    return Unexpected("UpdateScalarComponent");
  }
  vr::EVRInputError CreateHapticComponent(vr::PropertyContainerHandle_t, const char*,
                                          vr::VRInputComponentHandle_t*) override {
    return Unexpected("CreateHapticComponent");
  }
  vr::EVRInputError CreateSkeletonComponent(vr::PropertyContainerHandle_t, const char*, const char*, const char*,
                                            const vr::VRBoneTransform_t*, uint32_t,
                                            vr::VRInputComponentHandle_t*) override {
    return Unexpected("CreateSkeletonComponent");
  }
  vr::EVRInputError UpdateSkeletonComponent(vr::VRInputComponentHandle_t, const vr::VRBoneTransform_t*,
                                            uint32_t) override {
    return Unexpected("UpdateSkeletonComponent");
  }

 private:
  static vr::EVRInputError Unexpected(const char* method) {
    MsvcHostCalled(method, "", 0, 0);
    return vr::VRInputError_None;
  }
};

class DriverLog final : public vr::IVRDriverLog {
 public:
  void Log(const char* message) override { MsvcHostCalled("Log", message, 0, 0); }
};

class Manager final : public vr::IVRDriverManager {
 public:
  uint32_t GetDriverCount() const override { return 1; }
  uint32_t GetDriverName(vr::DriverId_t, char*, uint32_t) override { return 0; }
  vr::DriverHandle_t GetDriverHandle(const char*) override { return 1; }
};

class Resources final : public vr::IVRResources {
 public:
  uint32_t LoadSharedResource(const char*, char*, uint32_t) override { return 0; }
  uint32_t GetResourceFullPath(const char*, const char*, char*, uint32_t) override { return 0; }
};

Host host;
Settings settings;
Properties properties;
Input input;
DriverLog driverLog;
Manager manager;
Resources resources;

class Context final : public vr::IVRDriverContext {
 public:
  void* GetGenericInterface(const char* version, vr::EVRInitError* error) override {
    const struct {
      const char* version;
      void* address;
    } interfaces[] = {
        {vr::IVRServerDriverHost_Version, static_cast<vr::IVRServerDriverHost*>(&host)},
        {vr::IVRSettings_Version, static_cast<vr::IVRSettings*>(&settings)},
        {vr::IVRProperties_Version, static_cast<vr::IVRProperties*>(&properties)},
        {vr::IVRDriverInput_Version, static_cast<vr::IVRDriverInput*>(&input)},
        {vr::IVRDriverLog_Version, static_cast<vr::IVRDriverLog*>(&driverLog)},
        {vr::IVRDriverManager_Version, static_cast<vr::IVRDriverManager*>(&manager)},
        {vr::IVRResources_Version, static_cast<vr::IVRResources*>(&resources)},
    };
    MsvcHostCalled("GetGenericInterface", version, 0, 0);
    if (error != nullptr) *error = vr::VRInitError_None;
    for (const auto& known : interfaces) {
      if (Same(version, known.version)) return known.address;
    }
    return nullptr;
  }
  vr::DriverHandle_t GetDriverHandle() override { return 1; }
};

Context context;

}  // namespace

extern "C" void* MsvcHostContext() { return static_cast<vr::IVRDriverContext*>(&context); }
