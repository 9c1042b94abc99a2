#pragma once

#include <openvr_driver.h>

#include <atomic>
#include <memory>
#include <vector>

#include "devices/controller_registry.h"
#include "devices/fake_sensor_device.h"
#include "hmd/hmd_driver.h"
#include "link/listeners.h"

namespace ombrel {

// The provider that the runtime loads the library for: one object, as old as the library. It makes the devices, keeps
// them, and ticks them. The runtime calls it on its server thread, the link's reader thread reports controllers. Calls
// that may wait say so; none waits longer than it says, whatever the companion does.
class CServerDriver_Ombrel final : public vr::IServerTrackedDeviceProvider, public IControllerUpdatedListener {
 public:
  CServerDriver_Ombrel() = default;
  ~CServerDriver_Ombrel();
  CServerDriver_Ombrel(const CServerDriver_Ombrel&) = delete;
  CServerDriver_Ombrel& operator=(const CServerDriver_Ombrel&) = delete;

  // 0, or VRInitError_Init_InterfaceNotFound, or VRInitError_Init_HmdNotFound when the companion program is not
  // running or there is no memory for a headset. May be called again after a failure and after Cleanup; does nothing
  // while there is a headset. Waits for nothing but Direct3D, which makes a device.
  vr::EVRInitError Init(vr::IVRDriverContext* pDriverContext) override;
  // Takes 0.4 seconds, and up to two more while a frame under way waits for a keyed mutex. The library may be unloaded
  // when it has returned. A runtime that keeps a call of the link's threads (a pose, a device) waiting keeps this
  // waiting.
  void Cleanup() override;
  const char* const* GetInterfaceVersions() override;
  void RunFrame() override;
  bool ShouldBlockStandbyMode() override;
  void EnterStandby() override;
  void LeaveStandby() override;

  void OnControllerUpdated(const ControllerUpdate* record) override;

 private:
  vr::EVRInitError InitDevices();
  void RetireDevices();
  void AddHeadset();
  void AddFakeSensor();
  void ReleaseHeadset();
  void DrainEvents();
  void SendHapticPulse(vr::PropertyContainerHandle_t container, float durationSeconds);

  std::atomic<bool> firstFrameSeen_{false};
  bool fakeSensorEnabled_ = false;
  ControllerRegistry controllers_;
  std::unique_ptr<HMDDriver> headset_;
  std::unique_ptr<FakeSensorDevice> fakeSensor_;
  std::vector<std::unique_ptr<FakeSensorDevice>> retiredSensors_;
  std::vector<vr::ITrackedDeviceServerDriver*> devices_;  // all that the runtime got from Init
};

}  // namespace ombrel
