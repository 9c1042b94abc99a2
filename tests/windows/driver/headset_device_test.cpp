#include <gmock/gmock.h>

#include <array>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class HeadsetTest : public DriverTest {};

TEST_F(HeadsetTest, ComponentsAreFoundUnderAnyLetterCase) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  const char* const names[][2] = {{"IVRDriverDirectModeComponent_005", "ivrdriverDIRECTmodecomponent_005"},
                                  {"ITrackedDeviceServerDriver_005", "itrackeddeviceserverdriver_005"},
                                  {"IVRDisplayComponent_002", "IVRDISPLAYCOMPONENT_002"}};
  for (const auto& [exact, other] : names) {
    EXPECT_NE(Headset().GetComponent(exact), nullptr) << exact;
    EXPECT_EQ(Headset().GetComponent(exact), Headset().GetComponent(other)) << other;
  }
}

TEST_F(HeadsetTest, IsItsOwnDeviceComponent) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(Headset().GetComponent("ITrackedDeviceServerDriver_005"), &Headset());
}

TEST_F(HeadsetTest, HasNoOtherComponents) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  for (const char* name : {"IVRVirtualDisplay_002", "IVRCameraComponent_002", "IVRDisplayComponent_001",
                           "IVRDisplayComponent_0022", "IVRDisplayComponent", ""}) {
    EXPECT_EQ(Headset().GetComponent(name), nullptr) << name;
  }
  EXPECT_EQ(Headset().GetComponent(nullptr), nullptr);
}

TEST_F(HeadsetTest, DebugRequestsGetAnEmptyText) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  std::array<char, 8> response;
  response.fill('x');
  Headset().DebugRequest("anything", response.data(), response.size());
  EXPECT_EQ(std::string_view(response.data(), 8), std::string_view("\0xxxxxxx", 8));
}

TEST_F(HeadsetTest, DebugRequestsWithoutRoomGetNothing) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  char response = 'x';
  Headset().DebugRequest("anything", &response, 0);
  EXPECT_EQ(response, 'x');
  Headset().DebugRequest(nullptr, nullptr, 0);
}

TEST_F(HeadsetTest, StandsUprightUntilThereIsTrackingData) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  const vr::DriverPose_t pose = PoseOf(Headset());
  EXPECT_THAT(pose.vecPosition, testing::ElementsAre(0.0, 1.7000000476837158, 0.0));
  EXPECT_EQ(pose.qRotation.w, 1.0);
  EXPECT_EQ(pose.qRotation.x, 0.0);
  EXPECT_EQ(pose.qWorldFromDriverRotation.w, 1.0);
  EXPECT_EQ(pose.qDriverFromHeadRotation.w, 1.0);
  EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(pose.poseIsValid);
  EXPECT_TRUE(pose.willDriftInYaw);
  EXPECT_FALSE(pose.shouldApplyHeadModel);
  EXPECT_TRUE(pose.deviceIsConnected);
  EXPECT_THAT(pose.vecAngularVelocity, testing::Each(0.0));
}

TEST_F(HeadsetTest, SendsItsPoseWhenActivatedAndNotBefore) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime.Poses().Count(), 0U);
  EXPECT_EQ(Headset().Activate(5), vr::VRInitError_None);
  ASSERT_EQ(runtime.Poses().Count(5), 1U);
  EXPECT_EQ(runtime.Poses().Latest(5)->structSize, 280U);
  EXPECT_EQ(runtime.Poses().Latest(5)->pose.vecPosition[1], 1.7000000476837158);
}

TEST_F(HeadsetTest, EnterStandbyDoesNothing) {
  InitAndActivateHeadset();
  runtime.Journal().Clear();
  Headset().EnterStandby();
  EXPECT_TRUE(runtime.Journal().Entries().empty());
}

TEST_F(HeadsetTest, CanBeActivatedAgain) {
  InitAndActivateHeadset();
  Headset().Deactivate();
  EXPECT_EQ(Headset().Activate(4), vr::VRInitError_None);
  EXPECT_EQ(runtime.Poses().Count(4), 1U);
  EXPECT_EQ(LogLines().back(), "HMD activated with id 4 \n");
}

}  // namespace
}  // namespace ombrel::test
