// IServerTrackedDeviceProvider, called as MSVC lays it out: each method has an effect of its own.
#include <gmock/gmock.h>

#include "msvc_side/calls.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class ProviderSlotsTest : public DriverTest {
 protected:
  void SetUp() override {
    EnsureCompanionProcess();
    provider = module.HmdDriverFactory()("IServerTrackedDeviceProvider_004", nullptr);
    ASSERT_EQ(MsvcProviderInit(provider, static_cast<vr::IVRDriverContext*>(&runtime)), 0);
    EXPECT_EQ(NewLogLines().at(0), "Ombrel process is running\n");
  }

  void* provider = nullptr;
};

TEST_F(ProviderSlotsTest, Init) { EXPECT_EQ(runtime.Host().Added().size(), 2U); }

TEST_F(ProviderSlotsTest, Cleanup) {
  MsvcProviderCleanup(provider);
  MsvcProviderEnterStandby(provider);
  EXPECT_TRUE(NewLogLines().empty());
}

TEST_F(ProviderSlotsTest, GetInterfaceVersions) {
  EXPECT_STREQ(MsvcProviderGetInterfaceVersions(provider)[0], "IVRSettings_002");
}

TEST_F(ProviderSlotsTest, RunFrame) {
  runtime.Host().PushEvent({});
  MsvcProviderRunFrame(provider);
  EXPECT_EQ(runtime.Host().QueuedEvents(), 0U);
}

TEST_F(ProviderSlotsTest, ShouldBlockStandbyMode) {
  EXPECT_TRUE(MsvcProviderShouldBlockStandby(provider));
  EXPECT_THAT(NewLogLines(), ElementsAre("ShouldBlockStandby Server Tracked device \n"));
}

TEST_F(ProviderSlotsTest, EnterStandby) {
  MsvcProviderEnterStandby(provider);
  EXPECT_THAT(NewLogLines(), ElementsAre("Enter standby Server tracked device \n"));
}

TEST_F(ProviderSlotsTest, LeaveStandby) {
  MsvcProviderLeaveStandby(provider);
  EXPECT_THAT(NewLogLines(), ElementsAre("Leave standby Server tracked device \n"));
}

}  // namespace
}  // namespace ombrel::test
