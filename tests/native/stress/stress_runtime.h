#pragma once

#include <openvr_driver.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "counter.h"
#include "hmd/hmd_driver.h"
#include "server_driver_ombrel.h"
#include "support/hooked_runtime.h"

namespace ombrel::test {

// The runtime's process: the provider, and everything that the runtime's threads do with it. One function for each
// thread, each of which returns when it is told to; they count what they did.
class StressRuntime {
 public:
  struct Work {
    Counter serverTicks, activations, vibrations;
    Counter frames, vsyncs, swapSets;
    Counter headPosesSent, controllerPosesSent, headPosesAsked, controllerPosesAsked;
    Counter inputs, frequencies;
    Counter halfPoses;  // ever seen by anybody
  };

  explicit StressRuntime(std::int32_t hmdMode);
  ~StressRuntime();
  StressRuntime(const StressRuntime&) = delete;
  StressRuntime& operator=(const StressRuntime&) = delete;

  // The server thread: starts the driver, ticks it and activates the devices that it has added, and stops it. May be
  // started again; nobody else may call in meanwhile.
  [[nodiscard]] bool Start();
  void Tick();
  void Stop() { provider_.Cleanup(); }

  // The compositor thread: one frame of the headset's kind.
  void PresentFrame();
  // Another of its threads: a swap-texture set comes and goes. Does nothing in virtual-display mode.
  void ChangeSwapTextures();
  // Any other thread: asks every device that is known for its pose, many times.
  void AskForPoses();

  // Any thread: whether the companion is heard, activated devices or not.
  [[nodiscard]] bool HasControllers() const { return Devices().size() > 1; }
  [[nodiscard]] const Work& Done() const { return done_; }

 private:
  struct Device {
    vr::ITrackedDeviceServerDriver* driver;
    bool isHeadset;
    bool isActivated;
  };

  void SetHooks(std::int32_t hmdMode);
  void OnPose(std::uint32_t index, const vr::DriverPose_t& pose, std::uint32_t size);
  bool NextEvent(vr::VREvent_t* event);
  void ActivateNewDevices();
  void SubmitLayers();
  void AskForPose(const Device& device);
  [[nodiscard]] std::vector<Device> Devices() const;

  HookedRuntime host_;
  CServerDriver_Ombrel provider_;
  vr::IVRDriverDirectModeComponent* direct_ = nullptr;
  vr::IVRVirtualDisplay* virtual_ = nullptr;
  bool isVibrationDue_ = false;  // server thread
  float frame_ = 0.0F;           // compositor thread
  Work done_;

  mutable std::mutex devicesMutex_;
  std::vector<Device> devices_;  // by their indices
};

}  // namespace ombrel::test
