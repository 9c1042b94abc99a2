#include "runtime/fake_server_host.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace bench {
namespace {

// The host never calls a device: any address will do.
vr::ITrackedDeviceServerDriver* Device(std::uintptr_t number) {
  return reinterpret_cast<vr::ITrackedDeviceServerDriver*>(number);
}

class FakeServerHostTest : public testing::Test {
 protected:
  CallRecorder recorder;
  FakeServerHost host{recorder};
  vr::VREvent_t event{};
};

TEST_F(FakeServerHostTest, GivesTheHeadsetIndexZeroWheneverItComes) {
  EXPECT_TRUE(host.TrackedDeviceAdded("base", vr::TrackedDeviceClass_TrackingReference, Device(16)));
  EXPECT_TRUE(host.TrackedDeviceAdded("head", vr::TrackedDeviceClass_HMD, Device(32)));
  const auto pending = host.TakePending();
  ASSERT_EQ(pending.size(), 2U);
  EXPECT_EQ(pending[0].serial, "base");
  EXPECT_EQ(pending[0].index, 1U);
  EXPECT_EQ(pending[1].index, 0U);
  EXPECT_EQ(pending[1].driver, Device(32));
  EXPECT_TRUE(host.TakePending().empty());
}

TEST_F(FakeServerHostTest, HasRoomForSixtyFourDevices) {
  std::size_t accepted = 0;
  for (std::uintptr_t number = 1; number <= 70; ++number) {
    accepted += host.TrackedDeviceAdded("x", vr::TrackedDeviceClass_Controller, Device(16 * number)) ? 1U : 0U;
  }
  EXPECT_EQ(accepted, 63U);  // index 0 is kept for a headset
}

TEST_F(FakeServerHostTest, EventsComeOutInOrderUntilTheQueueIsEmpty) {
  host.PushHaptic(5, 6, 0.1F, 60.0F, 0.5F);
  event.eventType = 100;
  host.PushEvent(event);
  ASSERT_TRUE(host.PollNextEvent(&event, sizeof event));
  EXPECT_EQ(event.eventType, 1700U);
  const vr::VREvent_HapticVibration_t vibration = event.data.hapticVibration;
  EXPECT_EQ(vibration.containerHandle, 5U);
  EXPECT_EQ(vibration.componentHandle, 6U);
  EXPECT_EQ(vibration.fDurationSeconds, 0.1F);
  ASSERT_TRUE(host.PollNextEvent(&event, sizeof event));
  EXPECT_EQ(event.eventType, 100U);
  EXPECT_FALSE(host.PollNextEvent(&event, sizeof event));
}

TEST_F(FakeServerHostTest, AnEventOfAnotherSizeGetsNothing) {
  host.PushHaptic(5, 6, 0.1F, 60.0F, 0.5F);
  EXPECT_FALSE(host.PollNextEvent(&event, sizeof event - 4));
  EXPECT_EQ(host.PollsWithWrongSize(), 1U);
  EXPECT_EQ(host.QueuedEvents(), 1U);
}

TEST_F(FakeServerHostTest, APoseOfAnotherSizeIsNotRead) {
  vr::DriverPose_t pose{};
  pose.vecPosition[1] = 1.7;
  host.TrackedDevicePoseUpdated(3, pose, 272);
  EXPECT_EQ(host.Poses().Latest(3)->structSize, 272U);
  EXPECT_EQ(host.Poses().Latest(3)->pose.vecPosition[1], 0.0);
}

}  // namespace
}  // namespace bench
