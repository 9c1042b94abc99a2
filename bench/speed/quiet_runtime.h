#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

#include "runtime/fake_runtime.h"

namespace bench::speed {

// Hears poses and keeps none.
class QuietHost final : public FakeServerHost {
 public:
  using FakeServerHost::FakeServerHost;
  // Called first thing in each TrackedDevicePoseUpdated, with the device.
  std::function<void(std::uint32_t device)> onPose;

  void TrackedDevicePoseUpdated(std::uint32_t device, const vr::DriverPose_t& pose, std::uint32_t) override {
    if (onPose) onPose(device);
    if (device == vr::k_unTrackedDeviceIndex_Hmd) headX_ = pose.vecPosition[0];
  }
  // Where the head was last, in metres; `onPose` has returned by then.
  [[nodiscard]] double HeadX() const { return headX_; }

 private:
  std::atomic<double> headX_ = 0;
};

// Hears inputs likewise.
class QuietInput final : public FakeDriverInput {
 public:
  using FakeDriverInput::FakeDriverInput;
  // Called first thing in each UpdateScalarComponent, with the component.
  std::function<void(vr::VRInputComponentHandle_t)> onScalar;

  vr::EVRInputError UpdateBooleanComponent(vr::VRInputComponentHandle_t, bool, double) override {
    return vr::VRInputError_None;
  }
  vr::EVRInputError UpdateScalarComponent(vr::VRInputComponentHandle_t component, float, double) override {
    if (onScalar) onScalar(component);
    return vr::VRInputError_None;
  }
};

// The runtime's side of a driver that is measured: the calls that a measurement consists of are not recorded, since
// recording one costs more than making it.
class QuietRuntime final : public FakeRuntime {
 public:
  QuietHost host{Recorder()};
  QuietInput input{Recorder()};

  void* GetGenericInterface(const char* version, vr::EVRInitError* error) override {
    if (error != nullptr) *error = vr::VRInitError_None;
    if (version == std::string_view(vr::IVRServerDriverHost_Version))
      return static_cast<vr::IVRServerDriverHost*>(&host);
    if (version == std::string_view(vr::IVRDriverInput_Version)) return static_cast<vr::IVRDriverInput*>(&input);
    return FakeRuntime::GetGenericInterface(version, error);
  }
};

}  // namespace bench::speed
