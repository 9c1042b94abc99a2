// ITrackedDeviceServerDriver of a controller, called as MSVC lays it out.
#include <gmock/gmock.h>

#include <windows.h>

#include <array>

#include "companion/controller_record.h"
#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

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
  EXPECT_THAT(NewLogLines(), testing::ElementsAre("Controller: OmbrelControllerV02ID0 activated with id: 6\n"));
}

TEST_F(ControllerSlotsTest, GetComponent) {
  EXPECT_EQ(MsvcDeviceGetComponent(Device(), "ITrackedDeviceServerDriver_005"), Device());
  EXPECT_EQ(MsvcDeviceGetComponent(Device(), "IVRDisplayComponent_002"), nullptr);
}

// These show nothing, and so must not show what another slot would.
TEST_F(ControllerSlotsTest, DeactivateEnterStandbyAndDebugRequest) {
  std::array<char, 4> response{'x', 'x', 'x', 'x'};
  runtime.Journal().Clear();
  MsvcDeviceDeactivate(Device());
  MsvcDeviceEnterStandby(Device());
  MsvcDeviceDebugRequest(Device(), "anything", response.data(), response.size());
  // The link's thread may still be on its way out of the record before.
  for (const bench::JournalEntry& entry : runtime.Journal().Entries()) {
    EXPECT_NE(entry.threadId, GetCurrentThreadId()) << entry.call;
  }
  EXPECT_THAT(response, testing::Each('x'));
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
