#include "devices/fake_sensor_device.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "context/driver_context.h"
#include "context/driver_log.h"
#include "runtime/fake_runtime.h"
#include "support/runtime_lines.h"

namespace ombrel::test {
namespace {

using Lines = std::vector<std::string>;

class FakeSensorDeviceTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
    SetLogSinkIfNone(&runtime_.Log());
  }
  void TearDown() override {
    ClearLogSink();
    Context().Clear();
  }
  static void ExpectFixedPose(const vr::DriverPose_t& pose) {
    vr::DriverPose_t expected{};
    expected.qWorldFromDriverRotation.w = 1.0;
    expected.vecPosition[2] = 3.0;
    expected.qRotation.w = 1.0;
    expected.result = vr::TrackingResult_Running_OK;
    expected.poseIsValid = true;
    expected.deviceIsConnected = true;
    EXPECT_EQ(std::memcmp(&pose, &expected, sizeof(pose)), 0);
  }

  bench::FakeRuntime runtime_;
  FakeSensorDevice sensor_{&runtime_.Host(), "Ombrel fake sensor", "0.1113"};
};

TEST_F(FakeSensorDeviceTest, WritesItsPropertiesInOrder) {
  EXPECT_EQ(sensor_.Activate(4), vr::VRInitError_None);
  EXPECT_EQ(PropertyLines(runtime_),
            (Lines{"4: 4000 1 4 80.000000", "4: 4001 1 4 80.000000", "4: 4002 1 4 80.000000", "4: 4003 1 4 80.000000",
                   "4: 4004 1 4 0.000000", "4: 4005 1 4 12.000000", "4: 1029 2 4 4", "4: 2004 3 8 1",
                   "4: 1001 5 19 Ombrel fake sensor", "4: 1002 5 7 0.1113", "4: 1003 5 20 lh_basestation_vive"}));
}

TEST_F(FakeSensorDeviceTest, LogsItsActivationAndItsEnd) {
  sensor_.Activate(4);
  sensor_.Deactivate();
  EXPECT_EQ(runtime_.Log().Lines(),
            (Lines{"Activate fake sensor 4 \n", "Fake sensor driver deactivated: Ombrel fake sensor \n"}));
}

TEST_F(FakeSensorDeviceTest, SendsItsPoseOnceItIsActiveAndAfterDeactivationToo) {
  sensor_.PushPose();
  sensor_.Activate(4);
  EXPECT_EQ(runtime_.Poses().Count(), 0U) << "activation itself sends none";
  sensor_.PushPose();
  sensor_.Deactivate();
  sensor_.PushPose();
  EXPECT_EQ(PoseLines(runtime_), (Lines{"4 280", "4 280"}));
  ExpectFixedPose(runtime_.Poses().Latest(4)->pose);
}

TEST_F(FakeSensorDeviceTest, StandsThreeMetresAlongZ) {
  vr::DriverPose_t pose{};
  EXPECT_EQ(sensor_.GetPose(&pose), &pose);
  ExpectFixedPose(pose);
}

TEST_F(FakeSensorDeviceTest, SaysNothingToStandbyAndDebugRequests) {
  char response = 'x';
  sensor_.EnterStandby();
  sensor_.DebugRequest("anything", &response, 1);
  EXPECT_EQ(response, 'x');
  EXPECT_TRUE(runtime_.Log().Lines().empty());
}

TEST_F(FakeSensorDeviceTest, DoesNotMindThatTheRuntimeRefusesAProperty) {
  runtime_.Properties().FailWrite(vr::Prop_SerialNumber_String, vr::TrackedProp_PermissionDenied);
  EXPECT_EQ(sensor_.Activate(4), vr::VRInitError_None);
  EXPECT_EQ(PropertyLines(runtime_).size(), 11U);
}

TEST_F(FakeSensorDeviceTest, IsADeviceAndNothingElse) {
  EXPECT_EQ(sensor_.GetComponent("itrackeddeviceserverdriver_005"),
            static_cast<vr::ITrackedDeviceServerDriver*>(&sensor_));
  EXPECT_EQ(sensor_.GetComponent("IVRDisplayComponent_002"), nullptr);
  EXPECT_EQ(sensor_.GetComponent(nullptr), nullptr);
  EXPECT_EQ(sensor_.SerialNumber(), "0.1113");
}

}  // namespace
}  // namespace ombrel::test
