#include <gmock/gmock.h>

#include <array>
#include <cstring>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class FakeSensorTest : public DriverTest {
 protected:
  void SetUp() override { ASSERT_EQ(Init(), vr::VRInitError_None); }

  static void ExpectTheFixedPose(const vr::DriverPose_t& pose) {
    vr::DriverPose_t expected{};
    expected.qWorldFromDriverRotation.w = 1.0;
    expected.vecPosition[2] = 3.0;
    expected.qRotation.w = 1.0;
    expected.result = vr::TrackingResult_Running_OK;
    expected.poseIsValid = true;
    expected.deviceIsConnected = true;
    EXPECT_EQ(std::memcmp(&pose, &expected, sizeof(pose)), 0);
  }
};

TEST_F(FakeSensorTest, IsListedAsATrackingReference) {
  const auto added = runtime.Host().Added().at(1);
  EXPECT_EQ(added.serial, "0.1113");
  EXPECT_EQ(added.deviceClass, vr::TrackedDeviceClass_TrackingReference);
  FakeSensor().Activate(1);
  const auto container = bench::FakeProperties::ContainerOf(1);
  EXPECT_EQ(runtime.Properties().GetString(container, vr::Prop_SerialNumber_String), "0.1113");
  EXPECT_EQ(runtime.Properties().GetString(container, vr::Prop_ModelNumber_String), "Ombrel fake sensor");
  EXPECT_EQ(runtime.Properties().GetString(container, vr::Prop_RenderModelName_String), "lh_basestation_vive");
}

TEST_F(FakeSensorTest, HasTheSamePoseBeforeAndAfterActivation) {
  ExpectTheFixedPose(PoseOf(FakeSensor()));
  FakeSensor().Activate(1);
  ExpectTheFixedPose(PoseOf(FakeSensor()));
}

TEST_F(FakeSensorTest, SendsItsPoseOnEveryFrameOnceActivated) {
  Provider().RunFrame();
  EXPECT_EQ(runtime.Poses().Count(), 0U);
  FakeSensor().Activate(7);
  EXPECT_EQ(runtime.Poses().Count(), 0U) << "activation itself sends none";
  for (int frame = 0; frame < 3; ++frame) Provider().RunFrame();
  ASSERT_EQ(runtime.Poses().Count(7), 3U);
  EXPECT_EQ(runtime.Poses().Latest(7)->structSize, 280U);
  ExpectTheFixedPose(runtime.Poses().Latest(7)->pose);
}

TEST_F(FakeSensorTest, SendsItsPoseAfterDeactivationToo) {
  FakeSensor().Activate(1);
  FakeSensor().Deactivate();
  Provider().RunFrame();
  EXPECT_EQ(runtime.Poses().Count(1), 1U);
}

TEST_F(FakeSensorTest, IsItsOwnOnlyComponent) {
  EXPECT_EQ(FakeSensor().GetComponent("ITrackedDeviceServerDriver_005"), &FakeSensor());
  EXPECT_EQ(FakeSensor().GetComponent("itrackedDEVICEserverdriver_005"), &FakeSensor());
  EXPECT_EQ(FakeSensor().GetComponent("IVRDisplayComponent_002"), nullptr);
  EXPECT_EQ(FakeSensor().GetComponent(nullptr), nullptr);
}

TEST_F(FakeSensorTest, LeavesDebugResponsesAlone) {
  std::array<char, 4> response{'x', 'x', 'x', 'x'};
  FakeSensor().DebugRequest("anything", response.data(), response.size());
  EXPECT_THAT(response, testing::Each('x'));
}

TEST_F(FakeSensorTest, EnterStandbyDoesNothing) {
  FakeSensor().Activate(1);
  runtime.Journal().Clear();
  FakeSensor().EnterStandby();
  EXPECT_TRUE(runtime.Journal().Entries().empty());
}

}  // namespace
}  // namespace ombrel::test
