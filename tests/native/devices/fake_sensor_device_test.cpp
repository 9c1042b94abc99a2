#include "devices/fake_sensor_device.h"

#include <gtest/gtest.h>

#include "context/driver_context.h"
#include "context/driver_log.h"
#include "support/fake_runtime.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

class FakeSensorDeviceTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
    SetLogSinkIfNone(&runtime_.log);
  }
  void TearDown() override {
    ClearLogSink();
    Context().Clear();
  }
  void ExpectFixedPose(const vr::DriverPose_t& pose) {
    EXPECT_EQ(pose.vecPosition[0], 0.0);
    EXPECT_EQ(pose.vecPosition[1], 0.0);
    EXPECT_EQ(pose.vecPosition[2], 3.0);
    EXPECT_EQ(pose.qRotation.w, 1.0);
    EXPECT_EQ(pose.qWorldFromDriverRotation.w, 1.0);
    EXPECT_EQ(pose.qDriverFromHeadRotation.w, 0.0);
    EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
    EXPECT_TRUE(pose.poseIsValid && pose.deviceIsConnected);
  }

  FakeRuntime runtime_;
  FakeSensorDevice sensor_{&runtime_.host, "Ombrel fake sensor", "0.1113"};
};

TEST_F(FakeSensorDeviceTest, WritesItsPropertiesInOrder) {
  EXPECT_EQ(sensor_.Activate(4), vr::VRInitError_None);
  EXPECT_EQ(runtime_.properties.lines.All(),
            (Lines{"1004: 4000 1 4 80.000000", "1004: 4001 1 4 80.000000", "1004: 4002 1 4 80.000000",
                   "1004: 4003 1 4 80.000000", "1004: 4004 1 4 0.000000", "1004: 4005 1 4 12.000000",
                   "1004: 1029 2 4 4", "1004: 2004 3 8 1", "1004: 1001 5 19 Ombrel fake sensor",
                   "1004: 1002 5 7 0.1113", "1004: 1003 5 20 lh_basestation_vive"}));
}

TEST_F(FakeSensorDeviceTest, LogsItsActivationAndItsEnd) {
  sensor_.Activate(4);
  sensor_.Deactivate();
  EXPECT_EQ(runtime_.log.lines.All(),
            (Lines{"Activate fake sensor 4 \n", "Fake sensor driver deactivated: Ombrel fake sensor \n"}));
}

TEST_F(FakeSensorDeviceTest, SendsItsPoseOnceItIsActiveAndAfterDeactivationToo) {
  sensor_.PushPose();
  EXPECT_EQ(runtime_.host.updates.Size(), 0U);
  sensor_.Activate(4);
  sensor_.PushPose();
  sensor_.Deactivate();
  sensor_.PushPose();
  EXPECT_EQ(runtime_.host.updates.All(), (Lines{"4 280", "4 280"}));
  ExpectFixedPose(runtime_.host.LastPose());
}

TEST_F(FakeSensorDeviceTest, StandsThreeMetresAlongZ) {
  vr::DriverPose_t pose{};
  EXPECT_EQ(sensor_.GetPose(&pose), &pose);
  ExpectFixedPose(pose);
}

TEST_F(FakeSensorDeviceTest, IsADeviceAndNothingElse) {
  EXPECT_EQ(sensor_.GetComponent("itrackeddeviceserverdriver_005"),
            static_cast<vr::ITrackedDeviceServerDriver*>(&sensor_));
  EXPECT_EQ(sensor_.GetComponent("IVRDisplayComponent_002"), nullptr);
  EXPECT_EQ(sensor_.SerialNumber(), "0.1113");
}

}  // namespace
}  // namespace ombrel::test
