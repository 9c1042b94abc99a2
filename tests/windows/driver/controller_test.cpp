// Controllers as the provider sees them: announced when the companion first tells of one, and shaken when the runtime
// asks for it.
#include <gmock/gmock.h>

#include "companion/controller_record.h"
#include "support/link_test.h"

namespace ombrel::test {
namespace {

using testing::Contains;

class ControllerTest : public LinkTest {
 protected:
  void SetUp() override { Connect(); }

  void SendRecord(std::uint32_t id, float x = 0) {
    bench::ControllerRecord record;
    record.controllerId = id;
    record.pose[3] = x;
    Send(bench::EncodeControllerUpdate(record));
    Fence();
  }
  // Announced by its first record, then activated with this index.
  void AddActive(std::uint32_t id, std::uint32_t index) {
    SendRecord(id);
    runtime.Host().Added().back().driver->Activate(index);
  }
  void Shake(std::uint32_t index, float seconds) {
    runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(index), 1, seconds, 100.0F, 0.5F);
    Provider().RunFrame();
  }
  std::optional<bench::HapticPulse> NextPulse() {
    const auto received = server.Next(kTimeoutMs);
    if (!received || !received->message.Is(bench::MessageType::HapticPulse)) return std::nullopt;
    return bench::DecodeHapticPulse(received->message.payload);
  }
};

TEST_F(ControllerTest, IsAnnouncedByItsFirstRecord) {
  SendRecord(12);
  const auto added = runtime.Host().Added();
  ASSERT_EQ(added.size(), 2U);
  EXPECT_EQ(added[1].serial, "OmbrelControllerV02ID12");
  EXPECT_EQ(added[1].deviceClass, vr::TrackedDeviceClass_Controller);
  EXPECT_THAT(LogLines(), Contains("New driver registered (serial OmbrelControllerV02ID12) with status 1 \n"));
}

TEST_F(ControllerTest, IsAnnouncedOnce) {
  for (int i = 0; i < 3; ++i) SendRecord(12);
  EXPECT_EQ(runtime.Host().Added().size(), 2U);
}

TEST_F(ControllerTest, EachIdIsOneOfItsOwn) {
  for (const std::uint32_t id : {0U, 1U, 0xFFFFFFFFU}) SendRecord(id);
  const auto added = runtime.Host().Added();
  ASSERT_EQ(added.size(), 4U);
  EXPECT_EQ(added[1].serial, "OmbrelControllerV02ID0");
  EXPECT_EQ(added[2].serial, "OmbrelControllerV02ID1");
  EXPECT_EQ(added[3].serial, "OmbrelControllerV02ID-1");
}

TEST_F(ControllerTest, RefusalIsLogged) {
  runtime.Host().RefuseDevice("OmbrelControllerV02ID3");
  SendRecord(3);
  EXPECT_THAT(LogLines(), Contains("New driver registered (serial OmbrelControllerV02ID3) with status 0 \n"));
}

TEST_F(ControllerTest, FirstRecordDoesNotSetItsState) {
  SendRecord(5, 4.0F);
  auto& controller = *runtime.Host().Added().at(1).driver;
  controller.Activate(1);
  EXPECT_EQ(PoseOf(controller).vecPosition[0], 0.0);
  EXPECT_EQ(runtime.Poses().Count(1), 0U);
  SendRecord(5, 4.0F);
  EXPECT_EQ(PoseOf(controller).vecPosition[0], 4.0);
  EXPECT_EQ(runtime.Poses().Count(1), 1U);
}

TEST_F(ControllerTest, VibrationOfATenthOfASecondWrapsIn16Bits) {
  AddActive(7, 1);
  Shake(1, 0.1F);
  const auto pulse = NextPulse();
  ASSERT_TRUE(pulse.has_value());
  EXPECT_EQ(pulse->controllerId, 7U);
  EXPECT_EQ(pulse->durationMicroseconds, 34464);
}

TEST_F(ControllerTest, ShortVibrationsAreSentInMicroseconds) {
  AddActive(7, 1);
  Shake(1, 0.005F);
  const auto pulse = NextPulse();
  ASSERT_TRUE(pulse.has_value());
  EXPECT_NEAR(pulse->durationMicroseconds, 5000, 1);
}

TEST_F(ControllerTest, VibrationIsForTheControllerOfItsContainer) {
  AddActive(7, 1);
  AddActive(8, 2);
  Shake(2, 0.001F);
  Shake(1, 0.001F);
  EXPECT_EQ(NextPulse().value().controllerId, 8U);
  EXPECT_EQ(NextPulse().value().controllerId, 7U);
}

TEST_F(ControllerTest, VibrationIsLostWhileTheLinkIsDown) {
  AddActive(7, 1);
  server.Close();
  Shake(1, 0.001F);
  EXPECT_EQ(runtime.Host().QueuedEvents(), 0U);
  EXPECT_FALSE(server.Next(0).has_value());
}

TEST_F(ControllerTest, OutlivesCleanup) {
  AddActive(7, 1);
  auto& controller = *runtime.Host().Added().at(1).driver;
  Provider().Cleanup();
  EXPECT_EQ(PoseOf(controller).qRotation.w, 1.0);
  Shake(1, 0.001F);
  EXPECT_EQ(controller.GetComponent("ITrackedDeviceServerDriver_005"), &controller);
}

}  // namespace
}  // namespace ombrel::test
