#include "support/driver_test.h"

#include <windows.h>

#include "runtime/msvc_calls.h"
#include "support/module_import.h"
#include "support/named_process.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {
namespace {

// In the place of D3D11CreateDevice, whose arguments do not matter then.
HRESULT WINAPI NoDevice() { return E_FAIL; }

void WINAPI SleepAMillisecond(DWORD) { Sleep(1); }

}  // namespace

void EnsureCompanionProcess() { static const NamedProcess companion("Ombrel.exe"); }

vr::DriverPose_t PoseOf(vr::ITrackedDeviceServerDriver& device) { return bench::CallGetPose(&device); }

DriverTest::DriverTest(Graphics graphics)
    : module(FromEnvironment("OMBREL_TEST_DRIVER"), [graphics](void* driver) {
        if (graphics == Graphics::kReal) return;
        ReplaceImport(driver, "D3D11CreateDevice", reinterpret_cast<void*>(&NoDevice));
        ReplaceImport(driver, "Sleep", reinterpret_cast<void*>(&SleepAMillisecond));
      }) {}

DriverTest::~DriverTest() { Unload(); }

int DriverTest::Init() {
  EnsureCompanionProcess();
  return InitAsItIs();
}

void DriverTest::InitAndActivateHeadset() {
  Set("fakeSensorEnabled", false);
  ASSERT_EQ(Init(), vr::VRInitError_None);
  ASSERT_EQ(Headset().Activate(0), vr::VRInitError_None);
}

void DriverTest::Unload() {
  if (module.Handle() == nullptr) return;
  Provider().Cleanup();
  module.Unload();
}

vr::IVRDisplayComponent& DriverTest::Display() {
  return *static_cast<vr::IVRDisplayComponent*>(Headset().GetComponent(vr::IVRDisplayComponent_Version));
}

}  // namespace ombrel::test
