#include <gmock/gmock.h>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class RunFrameTest : public DriverTest {
 protected:
  void Push(std::uint32_t type) {
    vr::VREvent_t event{};
    event.eventType = type;
    runtime.Host().PushEvent(event);
  }
};

TEST_F(RunFrameTest, DrainsTheEventQueue) {
  InitAndActivateHeadset();
  for (const std::uint32_t type : {100U, 1701U, 1699U, 0U}) Push(type);
  Provider().RunFrame();
  EXPECT_EQ(runtime.Host().QueuedEvents(), 0U);
}

TEST_F(RunFrameTest, AsksForEventsOf48Bytes) {
  InitAndActivateHeadset();
  Push(100);
  Provider().RunFrame();
  EXPECT_EQ(runtime.Host().PollsWithWrongSize(), 0U);
  const auto polls = runtime.Journal().EntriesOf("IVRServerDriverHost.PollNextEvent");
  ASSERT_EQ(polls.size(), 1U);
  EXPECT_EQ(polls[0].arguments.at("size"), 48);
}

TEST_F(RunFrameTest, DrainsTheEventQueueWithoutAnActivatedDevice) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Push(100);
  Provider().RunFrame();
  EXPECT_EQ(runtime.Host().QueuedEvents(), 0U);
}

TEST_F(RunFrameTest, DropsVibrationsOfUnknownContainersWithoutAWord) {
  InitAndActivateHeadset();
  NewLogLines();
  runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(0), 1, 0.1F, 100.0F, 1.0F);
  runtime.Host().PushHaptic(0, 0, 0.1F, 100.0F, 1.0F);
  runtime.Host().PushHaptic(0xFFFFFFFFFFFFFFFF, 1, 0.1F, 100.0F, 1.0F);
  Provider().RunFrame();
  EXPECT_EQ(runtime.Host().QueuedEvents(), 0U);
  EXPECT_TRUE(NewLogLines().empty());
}

TEST_F(RunFrameTest, ReportsTheHeadsetBeforeTheBaseStation) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Headset().Activate(0);
  FakeSensor().Activate(1);
  runtime.Journal().Clear();
  Push(100);
  Provider().RunFrame();
  EXPECT_THAT(runtime.Journal().Calls("IVR"),
              testing::ElementsAre("IVRServerDriverHost.PollNextEvent", "IVRDriverInput.UpdateBooleanComponent",
                                   "IVRServerDriverHost.TrackedDevicePoseUpdated"));
}

TEST_F(RunFrameTest, SendsNoHeadsetPose) {
  InitAndActivateHeadset();
  const std::size_t poses = runtime.Poses().Count(0);
  for (int frame = 0; frame < 5; ++frame) Provider().RunFrame();
  EXPECT_EQ(runtime.Poses().Count(0), poses);
}

}  // namespace
}  // namespace ombrel::test
