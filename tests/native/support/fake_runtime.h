#pragma once

#include <openvr_driver.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "support/journal.h"

namespace ombrel::test {

class FakeDriverLog final : public vr::IVRDriverLog {
 public:
  void Log(const char* message) override { lines.Add(message); }
  Journal lines;
};

class FakeSettings final : public vr::IVRSettings {
 public:
  const char* GetSettingsErrorNameFromEnum(vr::EVRSettingsError) override { return ""; }
  bool Sync(bool, vr::EVRSettingsError*) override { return false; }
  void SetBool(const char*, const char*, bool, vr::EVRSettingsError*) override { ++writes; }
  void SetInt32(const char*, const char*, std::int32_t, vr::EVRSettingsError*) override { ++writes; }
  void SetFloat(const char*, const char*, float, vr::EVRSettingsError*) override { ++writes; }
  void SetString(const char*, const char*, const char*, vr::EVRSettingsError*) override { ++writes; }
  bool GetBool(const char* section, const char* key, vr::EVRSettingsError* error) override;
  std::int32_t GetInt32(const char* section, const char* key, vr::EVRSettingsError* error) override;
  float GetFloat(const char*, const char*, vr::EVRSettingsError*) override { return 0.0F; }
  void GetString(const char*, const char*, char*, std::uint32_t, vr::EVRSettingsError*) override {}
  void RemoveSection(const char*, vr::EVRSettingsError*) override { ++writes; }
  void RemoveKeyInSection(const char*, const char*, vr::EVRSettingsError*) override { ++writes; }

  // By "section/key". What is missing reads as 0, with an error if the caller asks for one.
  std::map<std::string, std::int32_t> values;
  vr::EVRSettingsError boolError = vr::VRSettingsError_None;  // whatever the value
  int numberErrorsAskedFor = 0;
  int writes = 0;
};

// Keeps a line for each entry of each batch: "container: property type-tag size value".
class FakeProperties final : public vr::IVRProperties {
 public:
  vr::ETrackedPropertyError ReadPropertyBatch(vr::PropertyContainerHandle_t, vr::PropertyRead_t*,
                                              std::uint32_t) override {
    return vr::TrackedProp_UnknownProperty;
  }
  vr::ETrackedPropertyError WritePropertyBatch(vr::PropertyContainerHandle_t container, vr::PropertyWrite_t* batch,
                                               std::uint32_t count) override;
  const char* GetPropErrorNameFromEnum(vr::ETrackedPropertyError) override { return ""; }
  vr::PropertyContainerHandle_t TrackedDeviceToPropertyContainer(vr::TrackedDeviceIndex_t device) override {
    return 1000 + device;
  }

  Journal lines;
  std::function<void(const std::string& line)> onLine;  // called ahead of each entry
};

class FakeServerDriverHost final : public vr::IVRServerDriverHost {
 public:
  bool TrackedDeviceAdded(const char*, vr::ETrackedDeviceClass, vr::ITrackedDeviceServerDriver*) override {
    return true;
  }
  void TrackedDevicePoseUpdated(std::uint32_t device, const vr::DriverPose_t& pose, std::uint32_t size) override;
  void VsyncEvent(double offset) override;
  void VendorSpecificEvent(std::uint32_t, vr::EVREventType, const vr::VREvent_Data_t&, double) override {}
  bool IsExiting() override { return false; }
  bool PollNextEvent(vr::VREvent_t*, std::uint32_t) override { return false; }
  void GetRawTrackedDevicePoses(float, vr::TrackedDevicePose_t*, std::uint32_t) override {}
  void TrackedDeviceDisplayTransformUpdated(std::uint32_t, vr::HmdMatrix34_t, vr::HmdMatrix34_t) override;

  [[nodiscard]] vr::DriverPose_t LastPose() const;

  Journal updates;               // "device size"; "eyes" for transforms of the eyes
  std::function<void()> onPose;  // called behind each update; may block
  Journal vsyncs;                // offsets
  std::function<void()> onVsync;

 private:
  mutable std::mutex mutex_;
  vr::DriverPose_t lastPose_{};
};

class FakeDriverInput;
class FakeDriverManager;
class FakeResources;

// The runtime's side of the driver's start, with every interface above and more, any of which can be withheld.
class FakeRuntime final : public vr::IVRDriverContext {
 public:
  FakeRuntime();
  ~FakeRuntime();

  void* GetGenericInterface(const char* version, vr::EVRInitError* error) override;
  vr::DriverHandle_t GetDriverHandle() override { return 1; }

  FakeDriverLog log;
  FakeSettings settings;
  FakeProperties properties;
  FakeServerDriverHost host;
  Journal input;  // "Create 1001 /proximity", "Update 5 1 0.000000"
  vr::EVRInputError createInputResult = vr::VRInputError_None;
  // Called within the creation of a boolean input, before it has a result; may write the handle.
  std::function<void(vr::VRInputComponentHandle_t*)> onCreateInput;
  std::set<std::string> withheld;  // interface versions
  Journal asked;                   // interface versions, in order

 private:
  std::unique_ptr<FakeDriverInput> driverInput_;
  std::unique_ptr<FakeDriverManager> driverManager_;
  std::unique_ptr<FakeResources> resources_;
};

}  // namespace ombrel::test
