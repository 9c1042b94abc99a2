// ITrackedDeviceServerDriver of each device, called as MSVC lays it out. A method that shows something has an effect of
// its own; one that shows nothing must not show what another slot would.
#include <gmock/gmock.h>

#include <windows.h>

#include <array>

#include "companion/controller_record.h"
#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

using Response = std::array<char, 4>;

constexpr Response kUntouched{'x', 'x', 'x', 'x'};

Response DebugRequest(void* device) {
  Response response = kUntouched;
  MsvcDeviceDebugRequest(device, "anything", response.data(), response.size());
  return response;
}

void ExpectItselfAndNo(void* device, const char* component) {
  EXPECT_EQ(MsvcDeviceGetComponent(device, "ITrackedDeviceServerDriver_005"), device);
  EXPECT_EQ(MsvcDeviceGetComponent(device, component), nullptr);
}

class StartedDriverTest : public DriverTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(Init(), vr::VRInitError_None);
    NewLogLines();
  }
};

using HeadsetSlotsTest = StartedDriverTest;

TEST_F(HeadsetSlotsTest, Activate) {
  EXPECT_EQ(MsvcDeviceActivate(&Headset(), 6), 0);
  EXPECT_THAT(NewLogLines(), ElementsAre("HMD activated with id 6 \n"));
  EXPECT_EQ(runtime.Poses().Count(6), 1U);
}

TEST_F(HeadsetSlotsTest, Deactivate) {
  MsvcDeviceDeactivate(&Headset());
  EXPECT_THAT(NewLogLines(), ElementsAre("Driver deactivated: Ombrel \n"));
}

TEST_F(HeadsetSlotsTest, EnterStandby) {
  runtime.Journal().Clear();
  MsvcDeviceEnterStandby(&Headset());
  EXPECT_TRUE(runtime.Journal().Entries().empty());
}

TEST_F(HeadsetSlotsTest, GetComponent) { ExpectItselfAndNo(&Headset(), "IVRCameraComponent_002"); }

TEST_F(HeadsetSlotsTest, DebugRequest) { EXPECT_THAT(DebugRequest(&Headset()), ElementsAre('\0', 'x', 'x', 'x')); }

TEST_F(HeadsetSlotsTest, GetPose) {
  const vr::DriverPose_t pose = PoseByMsvc(&Headset());
  EXPECT_THAT(pose.vecPosition, ElementsAre(0.0, 1.7000000476837158, 0.0));
  EXPECT_EQ(pose.qRotation.w, 1.0);
  EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(pose.willDriftInYaw);
}

TEST_F(HeadsetSlotsTest, GetPoseLeavesTheDeviceUsable) {
  for (int i = 0; i < 3; ++i) {
    GuardedResult<vr::DriverPose_t> pose;
    MsvcDeviceGetPose(&Headset(), pose.Address());
    EXPECT_TRUE(pose.Value().poseIsValid);
  }
  EXPECT_EQ(MsvcDeviceActivate(&Headset(), 0), 0);
  EXPECT_EQ(runtime.Poses().Count(0), 1U);
}

using FakeSensorSlotsTest = StartedDriverTest;

TEST_F(FakeSensorSlotsTest, Activate) {
  EXPECT_EQ(MsvcDeviceActivate(&FakeSensor(), 6), 0);
  EXPECT_THAT(NewLogLines(), ElementsAre("Activate fake sensor 6 \n"));
}

TEST_F(FakeSensorSlotsTest, Deactivate) {
  MsvcDeviceDeactivate(&FakeSensor());
  EXPECT_THAT(NewLogLines(), ElementsAre("Fake sensor driver deactivated: Ombrel fake sensor \n"));
}

TEST_F(FakeSensorSlotsTest, GetComponent) { ExpectItselfAndNo(&FakeSensor(), "IVRDisplayComponent_002"); }

TEST_F(FakeSensorSlotsTest, EnterStandbyAndDebugRequest) {
  runtime.Journal().Clear();
  MsvcDeviceEnterStandby(&FakeSensor());
  EXPECT_EQ(DebugRequest(&FakeSensor()), kUntouched);
  EXPECT_TRUE(runtime.Journal().Entries().empty());
}

TEST_F(FakeSensorSlotsTest, GetPose) {
  const vr::DriverPose_t pose = PoseByMsvc(&FakeSensor());
  EXPECT_THAT(pose.vecPosition, ElementsAre(0.0, 0.0, 3.0));
  EXPECT_EQ(pose.qDriverFromHeadRotation.w, 0.0);
  EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(pose.deviceIsConnected);
}

class ControllerSlotsTest : public LinkTest {
 protected:
  void SetUp() override {
    Connect();
    SendRecord();
    NewLogLines();
  }
  void SendRecord() {
    companion::ControllerRecord record;
    record.pose[3] = 4.0F;
    Send(companion::EncodeControllerUpdate(record));
    Fence();
  }
  void* Device() { return runtime.Host().Added().at(1).driver; }
};

TEST_F(ControllerSlotsTest, Activate) {
  EXPECT_EQ(MsvcDeviceActivate(Device(), 6), 0);
  EXPECT_THAT(NewLogLines(), ElementsAre("Controller: OmbrelControllerV02ID0 activated with id: 6\n"));
}

TEST_F(ControllerSlotsTest, GetComponent) { ExpectItselfAndNo(Device(), "IVRDisplayComponent_002"); }

TEST_F(ControllerSlotsTest, DeactivateEnterStandbyAndDebugRequest) {
  runtime.Journal().Clear();
  MsvcDeviceDeactivate(Device());
  MsvcDeviceEnterStandby(Device());
  EXPECT_EQ(DebugRequest(Device()), kUntouched);
  // The link's thread may still be on its way out of the record before.
  for (const bench::JournalEntry& entry : runtime.Journal().Entries()) {
    EXPECT_NE(entry.threadId, GetCurrentThreadId()) << entry.call;
  }
}

TEST_F(ControllerSlotsTest, GetPose) {
  ASSERT_EQ(MsvcDeviceActivate(Device(), 1), 0);
  SendRecord();
  const vr::DriverPose_t pose = PoseByMsvc(Device());
  EXPECT_EQ(pose.vecPosition[0], 4.0);
  EXPECT_TRUE(pose.poseIsValid);
}

}  // namespace
}  // namespace ombrel::test
