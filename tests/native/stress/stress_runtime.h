#pragma once

#include <openvr_driver.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>

#include "counter.h"
#include "hmd/hmd_driver.h"
#include "runtime/fake_runtime.h"
#include "server_driver_ombrel.h"

namespace ombrel::test {

// The runtime's process: the provider, and every call that the runtime makes into it and its devices. Each function
// returns when it is told to; they count what they did.
class StressRuntime {
 public:
  struct Work {
    Counter serverTicks, activations, reactivations, vibrations;
    Counter frames, vsyncs, swapSets;
    Counter headPosesSent, sensorPosesSent, controllerPosesSent;
    Counter headPosesAsked, sensorPosesAsked, controllerPosesAsked;
    Counter inputs, frequencies;
    Counter halfPoses;  // ever seen by anybody
  };

  explicit StressRuntime(std::int32_t hmdMode);
  ~StressRuntime();
  StressRuntime(const StressRuntime&) = delete;
  StressRuntime& operator=(const StressRuntime&) = delete;

  // Start and stop the driver, which may be started again; nobody else may call in meanwhile.
  [[nodiscard]] bool Start();
  void Stop() { provider_.Cleanup(); }

  // Any thread, and any number of them at once.
  // Activates the devices that the driver has added, and makes the provider's calls.
  void Tick();
  // One frame of the headset's kind.
  void PresentFrame();
  // A swap-texture set comes and goes. Does nothing in virtual-display mode.
  void ChangeSwapTextures();
  // Asks every device that is known for its pose, many times, and makes all its other calls.
  void UseDevices();

  // Any thread: whether the companion is heard, activated devices or not.
  [[nodiscard]] bool HasControllers() const { return deviceCount_ > 2; }
  [[nodiscard]] const Work& Done() const { return done_; }

 private:
  struct Device {
    vr::ITrackedDeviceServerDriver* driver = nullptr;
    vr::ETrackedDeviceClass deviceClass = vr::TrackedDeviceClass_Invalid;
    std::atomic<bool> isActivated{false};
  };
  struct PoseCounts {
    Counter& sent;
    Counter& asked;
  };

  void SetHooks(std::int32_t hmdMode);
  void AddDevice(vr::ETrackedDeviceClass deviceClass, vr::ITrackedDeviceServerDriver* driver);
  void OnPose(const bench::PoseRecord& record);
  bool NextEvent(vr::VREvent_t* event);
  void ActivateNewDevices();
  void SubmitLayers();
  void AskForPose(const Device& device);
  void MakeOtherCalls(std::uint32_t index);
  static void AskDisplay(vr::ITrackedDeviceServerDriver& headset);
  [[nodiscard]] PoseCounts CountsOf(const Device& device);

  bench::FakeRuntime host_;
  CServerDriver_Ombrel provider_;
  vr::IVRDriverDirectModeComponent* direct_ = nullptr;
  vr::IVRVirtualDisplay* virtual_ = nullptr;
  std::atomic<bool> isVibrationDue_{false};
  Counter submissions_;
  Work done_;

  // By their indices; those below the count are whole. Read without a lock, which would put the threads in an order.
  std::array<Device, 64> devices_;
  std::atomic<std::uint32_t> deviceCount_{0};
  std::mutex addingMutex_;
};

}  // namespace ombrel::test
