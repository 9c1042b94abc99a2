#include "runtime/fake_server_host.h"

#include <cstdint>

#include <windows.h>
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

TEST_F(FakeServerHostTest, ARefusedDeviceIsNotActivated) {
  host.RefuseDevice("0.1113");
  EXPECT_FALSE(host.TrackedDeviceAdded("0.1113", vr::TrackedDeviceClass_TrackingReference, Device(16)));
  EXPECT_TRUE(host.TakePending().empty());
  ASSERT_EQ(host.Added().size(), 1U);
  EXPECT_FALSE(host.Added()[0].accepted);
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
  ASSERT_TRUE(host.PollNextEvent(&event, 48));
  EXPECT_EQ(event.eventType, 1700U);
  EXPECT_EQ(event.data.hapticVibration.containerHandle, 5U);
  EXPECT_EQ(event.data.hapticVibration.componentHandle, 6U);
  EXPECT_EQ(event.data.hapticVibration.fDurationSeconds, 0.1F);
  ASSERT_TRUE(host.PollNextEvent(&event, 48));
  EXPECT_EQ(event.eventType, 100U);
  EXPECT_FALSE(host.PollNextEvent(&event, 48));
}

TEST_F(FakeServerHostTest, AnEventSizeOtherThan48GetsNothing) {
  host.PushHaptic(5, 6, 0.1F, 60.0F, 0.5F);
  EXPECT_FALSE(host.PollNextEvent(&event, 44));
  EXPECT_EQ(host.PollsWithWrongSize(), 1U);
  EXPECT_EQ(host.QueuedEvents(), 1U);
}

TEST_F(FakeServerHostTest, PosesAreKeptAsTheyWereSent) {
  vr::DriverPose_t pose{};
  pose.qRotation.w = 1.0;
  pose.vecPosition[1] = 1.7;
  host.TrackedDevicePoseUpdated(3, pose, 280);
  pose.vecPosition[1] = 0.0;  // what was received is a copy
  const auto latest = host.Poses().Latest(3);
  ASSERT_TRUE(latest.has_value());
  EXPECT_EQ(latest->pose.vecPosition[1], 1.7);
  EXPECT_EQ(latest->structSize, 280U);
  EXPECT_EQ(latest->threadId, GetCurrentThreadId());
  EXPECT_GT(latest->ticks, 0);
  EXPECT_EQ(host.Poses().Count(3), 1U);
  EXPECT_EQ(host.Poses().Count(0), 0U);
}

TEST_F(FakeServerHostTest, APoseOfAnotherSizeIsNotRead) {
  vr::DriverPose_t pose{};
  pose.vecPosition[1] = 1.7;
  host.TrackedDevicePoseUpdated(3, pose, 272);
  EXPECT_EQ(host.Poses().Latest(3)->structSize, 272U);
  EXPECT_EQ(host.Poses().Latest(3)->pose.vecPosition[1], 0.0);
}

TEST_F(FakeServerHostTest, ListenersHearOfEachPoseOnItsThread) {
  std::uint32_t heardOn = 0;
  host.Poses().Listen([&](const PoseRecord& record) { heardOn = record.threadId; });
  host.TrackedDevicePoseUpdated(0, {}, 280);
  EXPECT_EQ(heardOn, GetCurrentThreadId());
}

TEST_F(FakeServerHostTest, CountsVsyncsWithTheirOffset) {
  host.VsyncEvent(0.0);
  host.VsyncEvent(0.5);
  EXPECT_EQ(host.VsyncEvents(), 2U);
  EXPECT_EQ(recorder.Journal().Entries()[1].arguments["offset"], 0.5);
}

}  // namespace
}  // namespace bench
