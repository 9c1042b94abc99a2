// ITrackedDeviceServerDriver of the headset, called as MSVC lays it out: each method has an effect of its own.
#include <gmock/gmock.h>

#include <array>

#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class HeadsetSlotsTest : public DriverTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(Init(), vr::VRInitError_None);
    NewLogLines();
  }
  void* Device() { return &Headset(); }
};

TEST_F(HeadsetSlotsTest, Activate) {
  EXPECT_EQ(MsvcDeviceActivate(Device(), 6), 0);
  EXPECT_THAT(NewLogLines(), ElementsAre("HMD activated with id 6 \n"));
  EXPECT_EQ(runtime.Poses().Count(6), 1U);
}

TEST_F(HeadsetSlotsTest, Deactivate) {
  MsvcDeviceDeactivate(Device());
  EXPECT_THAT(NewLogLines(), ElementsAre("Driver deactivated: Ombrel \n"));
}

// The one slot that shows nothing: it must not show what another would.
TEST_F(HeadsetSlotsTest, EnterStandby) {
  runtime.Journal().Clear();
  MsvcDeviceEnterStandby(Device());
  EXPECT_TRUE(runtime.Journal().Entries().empty());
}

TEST_F(HeadsetSlotsTest, GetComponent) {
  EXPECT_EQ(MsvcDeviceGetComponent(Device(), "ITrackedDeviceServerDriver_005"), Device());
  EXPECT_EQ(MsvcDeviceGetComponent(Device(), "IVRCameraComponent_002"), nullptr);
}

TEST_F(HeadsetSlotsTest, DebugRequest) {
  std::array<char, 4> response{'x', 'x', 'x', 'x'};
  MsvcDeviceDebugRequest(Device(), "anything", response.data(), response.size());
  EXPECT_THAT(response, ElementsAre('\0', 'x', 'x', 'x'));
}

TEST_F(HeadsetSlotsTest, GetPose) {
  const vr::DriverPose_t pose = PoseByMsvc(Device());
  EXPECT_THAT(pose.vecPosition, ElementsAre(0.0, 1.7000000476837158, 0.0));
  EXPECT_EQ(pose.qRotation.w, 1.0);
  EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(pose.willDriftInYaw);
}

TEST_F(HeadsetSlotsTest, GetPoseLeavesTheDeviceUsable) {
  for (int i = 0; i < 3; ++i) {
    GuardedResult<vr::DriverPose_t> pose;
    MsvcDeviceGetPose(Device(), pose.Address());
    EXPECT_TRUE(pose.Value().poseIsValid);
  }
  EXPECT_EQ(MsvcDeviceActivate(Device(), 0), 0);
  EXPECT_EQ(runtime.Poses().Count(0), 1U);
}

}  // namespace
}  // namespace ombrel::test
