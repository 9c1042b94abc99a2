// Nothing that is thrown inside a call leaves the driver. The runtime of these tests is built with the same compiler as
// the driver, so that what it throws is an exception for the driver too; a real runtime's would not be one.
#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <utility>

#include "support/driver_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

class ThrowingTest : public DriverTest {
 protected:
  vr::IVRDriverDirectModeComponent& Direct() {
    return *static_cast<vr::IVRDriverDirectModeComponent*>(
        Headset().GetComponent(vr::IVRDriverDirectModeComponent_Version));
  }

 public:
  void Init() { static_cast<void>(DriverTest::Init()); }
  void ActivateHeadset() { Headset().Activate(0); }
  void DeactivateHeadset() { Headset().Deactivate(); }
  void ActivateFakeSensor() { FakeSensor().Activate(1); }
  void DeactivateFakeSensor() { FakeSensor().Deactivate(); }
  void RunFrame() { Provider().RunFrame(); }
  void ShouldBlock() { static_cast<void>(Provider().ShouldBlockStandbyMode()); }
  void EnterStandby() { Provider().EnterStandby(); }
  void LeaveStandby() { Provider().LeaveStandby(); }
  void CreateSet() {
    const vr::IVRDriverDirectModeComponent::SwapTextureSetDesc_t description{64, 64, 28, 1};
    vr::SharedTextureHandle_t handles[3] = {};
    Direct().CreateSwapTextureSet(1, &description, &handles);
  }
  void DestroySet() { Direct().DestroySwapTextureSet(1); }
};

struct Fault {
  const char* name;
  const char* call;                // the runtime's method that throws
  void (ThrowingTest::*action)();  // the runtime's call into the driver meanwhile
  bool needsInit = true;
};

class HostThrowsTest : public ThrowingTest, public ::testing::WithParamInterface<Fault> {
 protected:
  void Prepare() {
    if (!GetParam().needsInit) return;
    Init();
    ActivateHeadset();
    ActivateFakeSensor();
    runtime.Host().PushEvent({});
  }
};

TEST_P(HostThrowsTest, NothingLeavesTheDriver) {
  Prepare();
  const std::size_t before = runtime.Journal().Count(GetParam().call);
  runtime.Recorder().ThrowFrom(GetParam().call, 1000);
  EXPECT_NO_THROW((this->*GetParam().action)());
  EXPECT_GT(runtime.Journal().Count(GetParam().call), before) << "the call that throws was not made";
  runtime.Recorder().ThrowFrom(GetParam().call, 0);
}

using T = ThrowingTest;

INSTANTIATE_TEST_SUITE_P(
    , HostThrowsTest,
    testing::Values(Fault{"InitContext", "IVRDriverContext.GetGenericInterface", &T::Init, false},
                    Fault{"InitSettingsBool", "IVRSettings.GetBool", &T::Init, false},
                    Fault{"InitSettingsInt", "IVRSettings.GetInt32", &T::Init, false},
                    Fault{"InitLog", "IVRDriverLog.Log", &T::Init, false},
                    Fault{"InitHost", "IVRServerDriverHost.TrackedDeviceAdded", &T::Init, false},
                    Fault{"ActivateLog", "IVRDriverLog.Log", &T::ActivateHeadset},
                    Fault{"ActivateContainer", "IVRProperties.TrackedDeviceToPropertyContainer", &T::ActivateHeadset},
                    Fault{"ActivateProperty", "IVRProperties.WritePropertyBatch", &T::ActivateHeadset},
                    Fault{"ActivateCreateInput", "IVRDriverInput.CreateBooleanComponent", &T::ActivateHeadset},
                    Fault{"ActivateUpdateInput", "IVRDriverInput.UpdateBooleanComponent", &T::ActivateHeadset},
                    Fault{"ActivatePose", "IVRServerDriverHost.TrackedDevicePoseUpdated", &T::ActivateHeadset},
                    Fault{"DeactivateLog", "IVRDriverLog.Log", &T::DeactivateHeadset},
                    Fault{"SensorActivateLog", "IVRDriverLog.Log", &T::ActivateFakeSensor},
                    Fault{"SensorActivateProperty", "IVRProperties.WritePropertyBatch", &T::ActivateFakeSensor},
                    Fault{"SensorDeactivateLog", "IVRDriverLog.Log", &T::DeactivateFakeSensor},
                    Fault{"FrameEvents", "IVRServerDriverHost.PollNextEvent", &T::RunFrame},
                    Fault{"FrameInput", "IVRDriverInput.UpdateBooleanComponent", &T::RunFrame},
                    Fault{"FramePose", "IVRServerDriverHost.TrackedDevicePoseUpdated", &T::RunFrame},
                    Fault{"ShouldBlockStandbyLog", "IVRDriverLog.Log", &T::ShouldBlock},
                    Fault{"EnterStandbyLog", "IVRDriverLog.Log", &T::EnterStandby},
                    Fault{"LeaveStandbyLog", "IVRDriverLog.Log", &T::LeaveStandby},
                    Fault{"CreateSetLog", "IVRDriverLog.Log", &T::CreateSet},
                    Fault{"DestroySetLog", "IVRDriverLog.Log", &T::DestroySet}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(ThrowingTest, TheRuntimesFaultsAreExceptions) {
  runtime.Recorder().ThrowFrom("IVRServerDriverHost.IsExiting");
  EXPECT_THROW(static_cast<void>(runtime.Host().IsExiting()), bench::ScriptedFault);
}

TEST_F(ThrowingTest, DriverWorksAfterAFaultDuringAFrame) {
  Init();
  ActivateHeadset();
  runtime.Recorder().ThrowFrom("IVRDriverInput.UpdateBooleanComponent");
  RunFrame();
  const std::size_t updates = runtime.Input().Updates().size();
  RunFrame();
  EXPECT_EQ(runtime.Input().Updates().size(), updates + 1);
}

TEST_F(ThrowingTest, InitCanFollowOneThatAFaultEnded) {
  runtime.Recorder().ThrowFrom("IVRSettings.GetInt32");
  EXPECT_NE(DriverTest::Init(), vr::VRInitError_None);
  const std::size_t added = runtime.Host().Added().size();
  EXPECT_EQ(DriverTest::Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime.Host().Added().size(), added + 2);
}

// One allocation fails inside the driver, which then throws by itself. Only one: the compiler's own runtime cannot throw
// without any memory.
thread_local int allocationsBeforeFailure = -1;  // negative: none fails

void* FailingMalloc(std::size_t size) { return allocationsBeforeFailure-- == 0 ? nullptr : std::malloc(size); }

TEST_F(ThrowingTest, InitSurvivesTheFailureOfAnyAllocation) {
  EnsureCompanionProcess();
  vr::IServerTrackedDeviceProvider& provider = Provider();
  const ModuleImport failing(module.Handle(), "malloc", reinterpret_cast<void*>(&FailingMalloc));
  int failedInits = 0;
  int allocation = 0;
  std::size_t announced = 0;
  for (bool wasReached = true; wasReached; ++allocation) {
    allocationsBeforeFailure = allocation;
    int result = -1;
    EXPECT_NO_THROW(result = provider.Init(&runtime));
    wasReached = std::exchange(allocationsBeforeFailure, -1) < 0;
    if (result != vr::VRInitError_None) {
      ++failedInits;
      EXPECT_EQ(runtime.Host().Added().size(), announced) << "the runtime knows a headset that is gone";
    }
    announced = runtime.Host().Added().size();
    provider.Cleanup();
  }
  EXPECT_GT(allocation, 10);
  EXPECT_GT(failedInits, 5);
}

}  // namespace
}  // namespace ombrel::test
