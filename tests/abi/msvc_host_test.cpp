// The other direction: the driver's calls into a runtime that MSVC's rules lay out reach the methods they mean.
#include <gmock/gmock.h>

#include <algorithm>

#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using testing::Contains;
using testing::FieldsAre;
using testing::IsSupersetOf;

constexpr std::uint64_t kContainer = 0xC0FFEE0000000005;
constexpr std::uint64_t kInput = 0x1234567800000001;

class MsvcHostTest : public DriverTest {
 protected:
  void SetUp() override {
    EnsureCompanionProcess();
    ForgetHostCalls();
    provider = module.HmdDriverFactory()("IServerTrackedDeviceProvider_004", nullptr);
    ASSERT_EQ(MsvcProviderInit(provider, MsvcHostContext()), 0);
    const auto calls = HostCalls();
    for (const HostCall& call : calls) {
      if (call.method == "TrackedDeviceAdded") devices.push_back(reinterpret_cast<void*>(call.second));
    }
    ASSERT_EQ(devices.size(), 2U);
  }

  void* provider = nullptr;
  std::vector<void*> devices;
};

TEST_F(MsvcHostTest, InitReachesContextSettingsLogAndHost) {
  const auto calls = HostCalls();
  EXPECT_EQ(calls.at(0), (HostCall{"GetGenericInterface", "IVRServerDriverHost_005"}));
  EXPECT_THAT(calls, Contains(HostCall{"GetBool", "fakeSensorEnabled", 1, 0}));
  EXPECT_THAT(calls, Contains(HostCall{"GetInt32", "hmdMode", 0, 0}));
  EXPECT_THAT(calls, Contains(HostCall{"Log", "Preparing HMD, mode 0\n"}));
  EXPECT_THAT(calls, Contains(FieldsAre("TrackedDeviceAdded", "serialNumber", 1U, testing::_)));
  EXPECT_THAT(calls, Contains(FieldsAre("TrackedDeviceAdded", "0.1113", 4U, testing::_)));
}

TEST_F(MsvcHostTest, ActivationReachesPropertiesInputAndHost) {
  ForgetHostCalls();
  ASSERT_EQ(MsvcDeviceActivate(devices[0], 5), 0);
  const auto calls = HostCalls();
  EXPECT_EQ(calls.at(0), (HostCall{"TrackedDeviceToPropertyContainer", "", 5, 0}));
  EXPECT_THAT(calls, Contains(HostCall{"WritePropertyBatch", "", kContainer, 2007}));
  EXPECT_THAT(calls, Contains(HostCall{"WritePropertyBatch", "Ombrel", kContainer, 1001}));
  EXPECT_THAT(calls, Contains(HostCall{"CreateBooleanComponent", "/proximity", kContainer, 0}));
  EXPECT_THAT(calls, Contains(HostCall{"UpdateBooleanComponent", "now", kInput, 1}));
  EXPECT_EQ(calls.back(), (HostCall{"TrackedDevicePoseUpdated", "valid", 5, 280}));
}

TEST_F(MsvcHostTest, FramesReachHostAndInput) {
  ASSERT_EQ(MsvcDeviceActivate(devices[0], 5), 0);
  ASSERT_EQ(MsvcDeviceActivate(devices[1], 6), 0);
  ForgetHostCalls();
  MsvcProviderRunFrame(provider);
  EXPECT_THAT(HostCalls(), testing::ElementsAre(HostCall{"PollNextEvent", "", 48, 0},
                                                HostCall{"UpdateBooleanComponent", "now", kInput, 1},
                                                HostCall{"TrackedDevicePoseUpdated", "valid", 6, 280}));
}

TEST_F(MsvcHostTest, NoCallReachesAMethodThatTheDriverDoesNotUse) {
  const std::vector<std::string> used = {"GetGenericInterface",
                                         "GetBool",
                                         "GetInt32",
                                         "Log",
                                         "TrackedDeviceAdded",
                                         "TrackedDeviceToPropertyContainer",
                                         "WritePropertyBatch",
                                         "CreateBooleanComponent",
                                         "UpdateBooleanComponent",
                                         "TrackedDevicePoseUpdated",
                                         "PollNextEvent"};
  for (void* device : devices) ASSERT_EQ(MsvcDeviceActivate(device, 1), 0);
  MsvcProviderRunFrame(provider);
  MsvcProviderEnterStandby(provider);
  for (void* device : devices) MsvcDeviceDeactivate(device);
  for (const HostCall& call : HostCalls()) {
    EXPECT_NE(std::ranges::find(used, call.method), used.end()) << call.method;
  }
}

}  // namespace
}  // namespace ombrel::test
