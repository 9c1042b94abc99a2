#pragma once

#include <openvr_driver.h>

// A driver and a device that do nothing. A test derives from them what it needs.
namespace ombrel::test {

class IdleDevice : public vr::ITrackedDeviceServerDriver {
 public:
  vr::EVRInitError Activate(uint32_t) override { return vr::VRInitError_None; }
  void Deactivate() override {}
  void EnterStandby() override {}
  void* GetComponent(const char*) override { return nullptr; }
  void DebugRequest(const char*, char*, uint32_t) override {}
  vr::DriverPose_t* GetPose(vr::DriverPose_t* result) override {
    *result = givenPose;
    return result;
  }

  vr::DriverPose_t givenPose{};
};

class IdleProvider : public vr::IServerTrackedDeviceProvider {
 public:
  vr::EVRInitError Init(vr::IVRDriverContext*) override { return vr::VRInitError_None; }
  void Cleanup() override {}
  const char* const* GetInterfaceVersions() override { return nullptr; }
  void RunFrame() override {}
  bool ShouldBlockStandbyMode() override { return false; }
  void EnterStandby() override {}
  void LeaveStandby() override {}
};

}  // namespace ombrel::test
