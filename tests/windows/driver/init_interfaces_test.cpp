#include <gmock/gmock.h>

#include <algorithm>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

const std::vector<std::string>& AskedByInit() {
  static const std::vector<std::string> names = {"IVRServerDriverHost_005", "IVRSettings_002",      "IVRProperties_001",
                                                 "IVRDriverLog_001",        "IVRDriverManager_001", "IVRResources_001"};
  return names;
}

class InitTest : public DriverTest {};

TEST_F(InitTest, AsksForEachInterfaceOnceAndInOrder) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime.RequestedInterfaces(), AskedByInit());
}

TEST_F(InitTest, InputIsAskedForOnlyWhenItIsNeeded) {
  InitAndActivateHeadset();
  ASSERT_FALSE(runtime.RequestedInterfaces().empty());
  EXPECT_EQ(runtime.RequestedInterfaces().back(), "IVRDriverInput_001");
  EXPECT_EQ(std::ranges::count(runtime.RequestedInterfaces(), "IVRDriverInput_001"), 1);
}

class MissingInterfaceTest : public InitTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MissingInterfaceTest, EndsInitAtOnce) {
  runtime.Withhold(GetParam());
  EXPECT_EQ(Init(), 105);
  const auto end = std::ranges::find(AskedByInit(), GetParam()) + 1;
  EXPECT_EQ(runtime.RequestedInterfaces(), std::vector<std::string>(AskedByInit().begin(), end));
  EXPECT_TRUE(runtime.Host().Added().empty());
  EXPECT_TRUE(LogLines().empty());
}

TEST_P(MissingInterfaceTest, DoesNotSpoilALaterInit) {
  runtime.Withhold(GetParam());
  ASSERT_EQ(Init(), 105);
  runtime.Provide(GetParam());
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime.Host().Added().size(), 2U);
  EXPECT_EQ(LogLines().at(0), "Ombrel process is running\n");
}

INSTANTIATE_TEST_SUITE_P(, MissingInterfaceTest,
                         testing::Values("IVRServerDriverHost_005", "IVRSettings_002", "IVRDriverLog_001",
                                         "IVRDriverManager_001", "IVRResources_001"));

TEST_F(InitTest, GoesOnWithoutProperties) {
  runtime.Withhold("IVRProperties_001");
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(Headset().Activate(0), vr::VRInitError_None);
  EXPECT_EQ(FakeSensor().Activate(1), vr::VRInitError_None);
  EXPECT_EQ(runtime.Poses().Count(0), 1U);
}

TEST_F(InitTest, NeedsAContext) {
  EnsureCompanionProcess();
  EXPECT_EQ(Provider().Init(nullptr), 105);
}

TEST_F(InitTest, AnnouncesTheHeadsetAndThenTheBaseStation) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  const auto added = runtime.Host().Added();
  ASSERT_EQ(added.size(), 2U);
  EXPECT_EQ(added[0].serial, "serialNumber");
  EXPECT_EQ(added[0].deviceClass, vr::TrackedDeviceClass_HMD);
  EXPECT_EQ(added[1].serial, "0.1113");
  EXPECT_EQ(added[1].deviceClass, vr::TrackedDeviceClass_TrackingReference);
}

TEST_F(InitTest, DoesNotMindThatTheHeadsetIsRefused) {
  runtime.Host().RefuseDevice("serialNumber");
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(LogLines().back(), "Fake sensor registered with result 1\n");
}

TEST_F(InitTest, WhileThereIsAHeadsetAddsNothing) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  NewLogLines();
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime.Host().Added().size(), 2U);
  EXPECT_TRUE(NewLogLines().empty());
}

}  // namespace
}  // namespace ombrel::test
