// A driver with one controller: enough for the module loader and the session to have something real.

#include <cstring>

#include <openvr_driver.h>

namespace {

class ToyDevice : public vr::ITrackedDeviceServerDriver {
 public:
  vr::EVRInitError Activate(uint32_t) override { return vr::VRInitError_None; }
  void Deactivate() override {}
  void EnterStandby() override {}
  void* GetComponent(const char*) override { return nullptr; }
  void DebugRequest(const char*, char*, uint32_t) override {}
  vr::DriverPose_t* GetPose(vr::DriverPose_t* result) override {
    *result = {};
    result->vecPosition[1] = 1.25;
    return result;
  }
};

class ToyProvider : public vr::IServerTrackedDeviceProvider {
 public:
  vr::EVRInitError Init(vr::IVRDriverContext* context) override {
    auto* host =
        static_cast<vr::IVRServerDriverHost*>(context->GetGenericInterface(vr::IVRServerDriverHost_Version, nullptr));
    host->TrackedDeviceAdded("toy", vr::TrackedDeviceClass_Controller, &device_);
    return vr::VRInitError_None;
  }
  void Cleanup() override {}
  const char* const* GetInterfaceVersions() override { return nullptr; }
  void RunFrame() override {}
  bool ShouldBlockStandbyMode() override { return false; }
  void EnterStandby() override {}
  void LeaveStandby() override {}

 private:
  ToyDevice device_;
};

ToyProvider provider;

}  // namespace

extern "C" __declspec(dllexport) void* HmdDriverFactory(const char* interfaceName, int* returnCode) {
  if (std::strcmp(interfaceName, vr::IServerTrackedDeviceProvider_Version) == 0) {
    return static_cast<vr::IServerTrackedDeviceProvider*>(&provider);
  }
  *returnCode = vr::VRInitError_Init_InterfaceNotFound;
  return nullptr;
}
