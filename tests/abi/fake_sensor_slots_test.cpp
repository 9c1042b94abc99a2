// ITrackedDeviceServerDriver of the fake base station, called as MSVC lays it out.
#include <gmock/gmock.h>

#include <array>

#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class FakeSensorSlotsTest : public DriverTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(Init(), vr::VRInitError_None);
    NewLogLines();
  }
  void* Device() { return &FakeSensor(); }
};

TEST_F(FakeSensorSlotsTest, Activate) {
  EXPECT_EQ(MsvcDeviceActivate(Device(), 6), 0);
  EXPECT_THAT(NewLogLines(), ElementsAre("Activate fake sensor 6 \n"));
}

TEST_F(FakeSensorSlotsTest, Deactivate) {
  MsvcDeviceDeactivate(Device());
  EXPECT_THAT(NewLogLines(), ElementsAre("Fake sensor driver deactivated: Ombrel fake sensor \n"));
}

TEST_F(FakeSensorSlotsTest, GetComponent) {
  EXPECT_EQ(MsvcDeviceGetComponent(Device(), "ITrackedDeviceServerDriver_005"), Device());
  EXPECT_EQ(MsvcDeviceGetComponent(Device(), "IVRDisplayComponent_002"), nullptr);
}

// These two show nothing, and so must not show what another slot would.
TEST_F(FakeSensorSlotsTest, EnterStandbyAndDebugRequest) {
  std::array<char, 4> response{'x', 'x', 'x', 'x'};
  runtime.Journal().Clear();
  MsvcDeviceEnterStandby(Device());
  MsvcDeviceDebugRequest(Device(), "anything", response.data(), response.size());
  EXPECT_TRUE(runtime.Journal().Entries().empty());
  EXPECT_THAT(response, testing::Each('x'));
}

TEST_F(FakeSensorSlotsTest, GetPose) {
  const vr::DriverPose_t pose = PoseByMsvc(Device());
  EXPECT_THAT(pose.vecPosition, ElementsAre(0.0, 0.0, 3.0));
  EXPECT_EQ(pose.qDriverFromHeadRotation.w, 0.0);
  EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(pose.deviceIsConnected);
}

}  // namespace
}  // namespace ombrel::test
