#pragma once

#include <openvr_driver.h>

#include <cstdint>
#include <functional>
#include <string>

namespace ombrel::test {

// A runtime that keeps nothing: what reaches it goes to the hooks, on the thread that it comes on. For runs in which
// the driver is called more often than a journal could hold. Set the hooks before the driver starts.
class HookedRuntime final : public vr::IVRDriverContext,
                            public vr::IVRServerDriverHost,
                            public vr::IVRSettings,
                            public vr::IVRProperties,
                            public vr::IVRDriverLog,
                            public vr::IVRDriverInput,
                            public vr::IVRDriverManager,
                            public vr::IVRResources {
 public:
  std::function<void(vr::ETrackedDeviceClass, vr::ITrackedDeviceServerDriver*)> onDeviceAdded;
  std::function<void(std::uint32_t device, const vr::DriverPose_t&, std::uint32_t size)> onPose;
  std::function<void(vr::VRInputComponentHandle_t, bool)> onBoolean;
  std::function<void(vr::VRInputComponentHandle_t, float)> onScalar;
  std::function<void(vr::PropertyContainerHandle_t, const vr::PropertyWrite_t&)> onProperty;
  std::function<bool(vr::VREvent_t*)> nextEvent;
  std::function<void()> onVsync;
  std::function<void(const char*)> onLog;
  std::int32_t hmdMode = 0;
  bool isFakeSensorEnabled = false;

  static vr::PropertyContainerHandle_t ContainerOf(std::uint32_t device) { return 1000 + device; }
  // Of an input by its path, which the driver must know; never 0.
  static vr::VRInputComponentHandle_t HandleOf(vr::PropertyContainerHandle_t container, const std::string& path);

  void* GetGenericInterface(const char* version, vr::EVRInitError* error) override;
  vr::DriverHandle_t GetDriverHandle() override { return 1; }

  bool TrackedDeviceAdded(const char*, vr::ETrackedDeviceClass, vr::ITrackedDeviceServerDriver*) override;
  void TrackedDevicePoseUpdated(std::uint32_t, const vr::DriverPose_t&, std::uint32_t) override;
  void VsyncEvent(double) override;
  void VendorSpecificEvent(std::uint32_t, vr::EVREventType, const vr::VREvent_Data_t&, double) override {}
  bool IsExiting() override { return false; }
  bool PollNextEvent(vr::VREvent_t*, std::uint32_t) override;
  void GetRawTrackedDevicePoses(float, vr::TrackedDevicePose_t*, std::uint32_t) override {}
  void TrackedDeviceDisplayTransformUpdated(std::uint32_t, vr::HmdMatrix34_t, vr::HmdMatrix34_t) override {}

  const char* GetSettingsErrorNameFromEnum(vr::EVRSettingsError) override { return ""; }
  bool Sync(bool, vr::EVRSettingsError*) override { return false; }
  void SetBool(const char*, const char*, bool, vr::EVRSettingsError*) override {}
  void SetInt32(const char*, const char*, std::int32_t, vr::EVRSettingsError*) override {}
  void SetFloat(const char*, const char*, float, vr::EVRSettingsError*) override {}
  void SetString(const char*, const char*, const char*, vr::EVRSettingsError*) override {}
  bool GetBool(const char*, const char*, vr::EVRSettingsError* error) override;
  std::int32_t GetInt32(const char*, const char* key, vr::EVRSettingsError*) override;
  float GetFloat(const char*, const char*, vr::EVRSettingsError*) override { return 0.0F; }
  void GetString(const char*, const char*, char*, std::uint32_t, vr::EVRSettingsError*) override {}
  void RemoveSection(const char*, vr::EVRSettingsError*) override {}
  void RemoveKeyInSection(const char*, const char*, vr::EVRSettingsError*) override {}

  vr::ETrackedPropertyError ReadPropertyBatch(vr::PropertyContainerHandle_t, vr::PropertyRead_t*,
                                              std::uint32_t) override {
    return vr::TrackedProp_UnknownProperty;
  }
  vr::ETrackedPropertyError WritePropertyBatch(vr::PropertyContainerHandle_t, vr::PropertyWrite_t*,
                                               std::uint32_t) override;
  const char* GetPropErrorNameFromEnum(vr::ETrackedPropertyError) override { return ""; }
  vr::PropertyContainerHandle_t TrackedDeviceToPropertyContainer(vr::TrackedDeviceIndex_t device) override {
    return ContainerOf(device);
  }

  void Log(const char*) override;

  vr::EVRInputError CreateBooleanComponent(vr::PropertyContainerHandle_t, const char*,
                                           vr::VRInputComponentHandle_t*) override;
  vr::EVRInputError UpdateBooleanComponent(vr::VRInputComponentHandle_t, bool, double) override;
  vr::EVRInputError CreateScalarComponent(vr::PropertyContainerHandle_t, const char*, vr::VRInputComponentHandle_t*,
                                          vr::EVRScalarType, vr::EVRScalarUnits) override;
  vr::EVRInputError UpdateScalarComponent(vr::VRInputComponentHandle_t, float, double) override;
  vr::EVRInputError CreateHapticComponent(vr::PropertyContainerHandle_t, const char*,
                                          vr::VRInputComponentHandle_t*) override;
  vr::EVRInputError CreateSkeletonComponent(vr::PropertyContainerHandle_t, const char*, const char*, const char*,
                                            const vr::VRBoneTransform_t*, std::uint32_t,
                                            vr::VRInputComponentHandle_t*) override;
  vr::EVRInputError UpdateSkeletonComponent(vr::VRInputComponentHandle_t, const vr::VRBoneTransform_t*,
                                            std::uint32_t) override;

  std::uint32_t GetDriverCount() const override { return 1; }
  std::uint32_t GetDriverName(vr::DriverId_t, char*, std::uint32_t) override { return 0; }
  vr::DriverHandle_t GetDriverHandle(const char*) override { return 1; }

  std::uint32_t LoadSharedResource(const char*, char*, std::uint32_t) override { return 0; }
  std::uint32_t GetResourceFullPath(const char*, const char*, char*, std::uint32_t) override { return 0; }
};

}  // namespace ombrel::test
