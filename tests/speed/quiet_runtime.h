#pragma once

#include <openvr_driver.h>

#include <cstdint>
#include <cstring>

namespace ombrel::test {

// The runtime's interfaces with nothing behind them, so that a measurement is the driver's own: calls are counted.
class QuietHost final : public vr::IVRServerDriverHost {
 public:
  bool TrackedDeviceAdded(const char*, vr::ETrackedDeviceClass, vr::ITrackedDeviceServerDriver*) override {
    return true;
  }
  void TrackedDevicePoseUpdated(std::uint32_t, const vr::DriverPose_t& pose, std::uint32_t) override {
    ++poses;
    lastX = pose.vecPosition[0];
  }
  void VsyncEvent(double) override {}
  void VendorSpecificEvent(std::uint32_t, vr::EVREventType, const vr::VREvent_Data_t&, double) override {}
  bool IsExiting() override { return false; }
  bool PollNextEvent(vr::VREvent_t*, std::uint32_t) override { return false; }
  void GetRawTrackedDevicePoses(float, vr::TrackedDevicePose_t*, std::uint32_t) override {}
  void TrackedDeviceDisplayTransformUpdated(std::uint32_t, vr::HmdMatrix34_t, vr::HmdMatrix34_t) override {}

  std::uint64_t poses = 0;
  double lastX = 0.0;
};

class QuietInput final : public vr::IVRDriverInput {
 public:
  vr::EVRInputError CreateBooleanComponent(vr::PropertyContainerHandle_t, const char*,
                                           vr::VRInputComponentHandle_t* handle) override {
    return Made(handle);
  }
  vr::EVRInputError UpdateBooleanComponent(vr::VRInputComponentHandle_t, bool, double) override { return Updated(); }
  vr::EVRInputError CreateScalarComponent(vr::PropertyContainerHandle_t, const char*,
                                          vr::VRInputComponentHandle_t* handle, vr::EVRScalarType,
                                          vr::EVRScalarUnits) override {
    return Made(handle);
  }
  vr::EVRInputError UpdateScalarComponent(vr::VRInputComponentHandle_t, float, double) override { return Updated(); }
  vr::EVRInputError CreateHapticComponent(vr::PropertyContainerHandle_t, const char*,
                                          vr::VRInputComponentHandle_t* handle) override {
    return Made(handle);
  }
  vr::EVRInputError CreateSkeletonComponent(vr::PropertyContainerHandle_t, const char*, const char*, const char*,
                                            const vr::VRBoneTransform_t*, std::uint32_t,
                                            vr::VRInputComponentHandle_t* handle) override {
    return Made(handle);
  }
  vr::EVRInputError UpdateSkeletonComponent(vr::VRInputComponentHandle_t, const vr::VRBoneTransform_t*,
                                            std::uint32_t) override {
    return Updated();
  }

  std::uint64_t updates = 0;

 private:
  vr::EVRInputError Made(vr::VRInputComponentHandle_t* handle) {
    *handle = ++made_;
    return vr::VRInputError_None;
  }
  vr::EVRInputError Updated() {
    ++updates;
    return vr::VRInputError_None;
  }

  vr::VRInputComponentHandle_t made_ = 0;
};

// Offers the input interface alone.
class QuietContext final : public vr::IVRDriverContext {
 public:
  void* GetGenericInterface(const char* version, vr::EVRInitError* error) override {
    const bool isInput = std::strcmp(version, vr::IVRDriverInput_Version) == 0;
    if (error != nullptr) *error = isInput ? vr::VRInitError_None : vr::VRInitError_Init_InterfaceNotFound;
    return isInput ? static_cast<vr::IVRDriverInput*>(&input) : nullptr;
  }
  vr::DriverHandle_t GetDriverHandle() override { return 1; }

  QuietInput input;
};

}  // namespace ombrel::test
