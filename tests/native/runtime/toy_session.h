#pragma once

#include "runtime/runtime_session.h"

namespace bench {

class ToyController : public vr::ITrackedDeviceServerDriver {
 public:
  vr::EVRInitError Activate(uint32_t) override { return vr::VRInitError_None; }
  void Deactivate() override {}
  void EnterStandby() override {}
  void* GetComponent(const char*) override { return nullptr; }
  void DebugRequest(const char*, char*, uint32_t) override {}
  vr::DriverPose_t* GetPose(vr::DriverPose_t* result) override { return result; }
};

// A driver that does nothing.
class ToyProvider : public vr::IServerTrackedDeviceProvider {
 public:
  vr::EVRInitError Init(vr::IVRDriverContext*) override { return vr::VRInitError_None; }
  void Cleanup() override {}
  const char* const* GetInterfaceVersions() override { return nullptr; }
  void RunFrame() override {}
  bool ShouldBlockStandbyMode() override { return false; }
  void EnterStandby() override {}
  void LeaveStandby() override {}
};

// A session of it; tests add devices to its host themselves.
class ToySession {
 public:
  // Activates one more controller; its container.
  vr::PropertyContainerHandle_t AddController(const char* serial) {
    runtime.Host().TrackedDeviceAdded(serial, vr::TrackedDeviceClass_Controller, &controller);
    session.ActivatePending();
    return session.Devices().back().container;
  }

  FakeRuntime runtime;
  ToyController controller;
  ToyProvider provider;
  RuntimeSession session{runtime, provider};
};

}  // namespace bench
