// A driver with one controller: enough for the module loader and the session to have something real.

#include <cstring>

#include "idle_driver/idle_driver.h"

namespace {

class ToyProvider final : public ombrel::test::IdleProvider {
 public:
  vr::EVRInitError Init(vr::IVRDriverContext* context) override {
    auto* host =
        static_cast<vr::IVRServerDriverHost*>(context->GetGenericInterface(vr::IVRServerDriverHost_Version, nullptr));
    device_.givenPose.vecPosition[1] = 1.25;
    host->TrackedDeviceAdded("toy", vr::TrackedDeviceClass_Controller, &device_);
    return vr::VRInitError_None;
  }

 private:
  ombrel::test::IdleDevice device_;
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
