#pragma once

#include <openvr_driver.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "runtime/fake_runtime.h"

namespace bench::speed {

// Hears poses, and does nothing else with them.
class LeanHost final : public vr::IVRServerDriverHost {
 public:
  // Called with the device first thing in each TrackedDevicePoseUpdated.
  std::function<void(std::uint32_t device)> onPose;

  // The devices that were announced, in order.
  [[nodiscard]] std::vector<vr::ITrackedDeviceServerDriver*> Devices();

  bool TrackedDeviceAdded(const char*, vr::ETrackedDeviceClass, vr::ITrackedDeviceServerDriver* device) override;
  void TrackedDevicePoseUpdated(std::uint32_t device, const vr::DriverPose_t&, std::uint32_t) override {
    if (onPose) onPose(device);
  }
  void VsyncEvent(double) override {}
  void VendorSpecificEvent(std::uint32_t, vr::EVREventType, const vr::VREvent_Data_t&, double) override {}
  bool IsExiting() override { return false; }
  bool PollNextEvent(vr::VREvent_t*, std::uint32_t) override { return false; }
  void GetRawTrackedDevicePoses(float, vr::TrackedDevicePose_t*, std::uint32_t) override {}
  void TrackedDeviceDisplayTransformUpdated(std::uint32_t, vr::HmdMatrix34_t, vr::HmdMatrix34_t) override {}

 private:
  std::mutex mutex_;
  std::vector<vr::ITrackedDeviceServerDriver*> devices_;
};

// Hears inputs likewise.
class LeanInput final : public vr::IVRDriverInput {
 public:
  // Called first thing in each update of a scalar component, with its handle.
  std::function<void(vr::VRInputComponentHandle_t)> onScalar;
  // The scalar component that was made last: of a controller, its trigger.
  [[nodiscard]] vr::VRInputComponentHandle_t LastScalar() const { return lastScalar_; }

  vr::EVRInputError CreateBooleanComponent(vr::PropertyContainerHandle_t, const char*,
                                           vr::VRInputComponentHandle_t* handle) override;
  vr::EVRInputError UpdateBooleanComponent(vr::VRInputComponentHandle_t, bool, double) override {
    return vr::VRInputError_None;
  }
  vr::EVRInputError CreateScalarComponent(vr::PropertyContainerHandle_t, const char*,
                                          vr::VRInputComponentHandle_t* handle, vr::EVRScalarType,
                                          vr::EVRScalarUnits) override;
  vr::EVRInputError UpdateScalarComponent(vr::VRInputComponentHandle_t handle, float, double) override {
    if (onScalar) onScalar(handle);
    return vr::VRInputError_None;
  }
  vr::EVRInputError CreateHapticComponent(vr::PropertyContainerHandle_t, const char*,
                                          vr::VRInputComponentHandle_t* handle) override;
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
  std::atomic<vr::VRInputComponentHandle_t> made_ = 0;
  std::atomic<vr::VRInputComponentHandle_t> lastScalar_ = 0;
};

// The runtime's side of a driver whose speed is measured: where the driver calls while it is measured there is next to
// nothing; all else is the recording stand-in.
class LeanRuntime final : public vr::IVRDriverContext {
 public:
  void* GetGenericInterface(const char* version, vr::EVRInitError* error) override;
  vr::DriverHandle_t GetDriverHandle() override { return 1; }

  FakeRuntime rest;
  LeanHost host;
  LeanInput input;
};

}  // namespace bench::speed
