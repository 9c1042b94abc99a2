// Controllers as the provider sees them: announced when the companion first tells of one, and shaken when the runtime
// asks for it.
#include <limits>
#include <optional>
#include <utility>

#include "companion/messages.h"
#include "platform/clock.h"
#include "provider_fixture.h"

namespace ombrel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

class ProviderControllersTest : public ProviderTest {
 protected:
  void SetUp() override { Connect(); }
  void Announce(std::uint32_t id) { SendRecord({.controllerId = id}); }
  void AddActive(std::uint32_t id, std::uint32_t index) {
    Announce(id);
    ActivateController(index);
  }
  void Shake(std::uint32_t index, float seconds) {
    runtime_.Host().PushHaptic(bench::FakeProperties::ContainerOf(index), 1, seconds, 100.0F, 0.5F);
    provider_.RunFrame();
  }
  // Shakes it until the companion gets a pulse: one that waits too long for a busy machine is dropped.
  std::optional<companion::HapticPulse> PulseOf(std::uint32_t index, float seconds) {
    if (!WaitUntil([&] {
          Shake(index, seconds);
          return companion_.in.HasData(500);
        })) {
      return std::nullopt;
    }
    const auto message = companion_.Receive();
    if (!message || message->type != 11) return std::nullopt;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(message->payload.data());
    return companion::DecodeHapticPulse({bytes, message->payload.size()});
  }
};

TEST_F(ProviderControllersTest, AreAnnouncedOnceByTheirFirstRecordEachIdAsOneOfItsOwn) {
  for (const std::uint32_t id : {0U, 12U, 12U, 0xFFFFFFFFU, 0U}) Announce(id);
  ASSERT_EQ(Added().size(), 5U);
  EXPECT_EQ(Added()[2].serial, "OmbrelControllerV02ID0");
  EXPECT_EQ(Added()[3].serial, "OmbrelControllerV02ID12");
  EXPECT_EQ(Added()[4].serial, "OmbrelControllerV02ID-1");
  EXPECT_EQ(Added()[3].deviceClass, vr::TrackedDeviceClass_Controller);
  EXPECT_TRUE(runtime_.Log().Contains("New driver registered (serial OmbrelControllerV02ID12) with status 1 \n"));
}

TEST_F(ProviderControllersTest, OneThatIsRefusedIsToldOfAndNotAnnouncedAgain) {
  runtime_.Host().RefuseDevice("OmbrelControllerV02ID3");
  for (int i = 0; i < 3; ++i) Announce(3);
  EXPECT_EQ(Added().size(), 3U);
  EXPECT_EQ(PosesOf(kController), 0U);
  EXPECT_TRUE(runtime_.Log().Contains("New driver registered (serial OmbrelControllerV02ID3) with status 0 \n"));
}

TEST_F(ProviderControllersTest, TheFirstRecordIsNotAppliedEvenIfItsControllerIsActivatedAtOnce) {
  runtime_.Host().ActivateAtOnce();
  const companion::ControllerRecord record{.controllerId = 5, .pressedButtons = 0x1};
  SendRecord(record);
  EXPECT_EQ(PosesOf(kController), 0U);
  EXPECT_TRUE(runtime_.Input().Updates("/input/system/click").empty());
  SendRecord(record);
  EXPECT_EQ(PosesOf(kController), 1U);
  EXPECT_EQ(runtime_.Input().Updates("/input/system/click").size(), 1U);
}

TEST_F(ProviderControllersTest, ARecenteringDoesNotTurnThem) {
  AddActive(7, kController);
  ASSERT_TRUE(companion_.SendPose(0, 0.6F, 0, 0.8F) && companion_.Send(8));
  SendRecord({.controllerId = 7});
  EXPECT_EQ(runtime_.Poses().Latest(kController)->pose.qRotation.w, 1.0);
}

TEST_F(ProviderControllersTest, AVibrationBecomesAPulseAndNoOtherEventDoes) {
  AddActive(7, kController);
  for (const std::uint32_t type : {1701U, 1699U}) {
    vr::VREvent_t event{};
    event.eventType = type;
    event.data.hapticVibration.containerHandle = bench::FakeProperties::ContainerOf(kController);
    event.data.hapticVibration.fDurationSeconds = 0.001F;
    runtime_.Host().PushEvent(event);
  }
  const auto micros = [] {
    return static_cast<std::uint32_t>(PerformanceCounter() / (PerformanceFrequency() / 1'000'000));
  };
  const std::uint32_t before = micros();
  const auto pulse = PulseOf(kController, 0.005F);
  ASSERT_TRUE(pulse.has_value());
  EXPECT_EQ(pulse->controllerId, 7U);
  EXPECT_EQ(pulse->durationMicroseconds, 5000);
  // The low 32 bits begin anew every 72 minutes.
  EXPECT_LE(pulse->timestampMicroseconds - before, micros() - before);
}

TEST_F(ProviderControllersTest, AVibrationIsForTheControllerOfItsContainer) {
  AddActive(7, 2);
  AddActive(8, 3);
  EXPECT_EQ(PulseOf(3, 0.001F).value().controllerId, 8U);
  EXPECT_EQ(PulseOf(2, 0.001F).value().controllerId, 7U);
}

TEST_F(ProviderControllersTest, AVibrationIsLostForAnUnknownContainerAndWhileTheLinkIsDown) {
  AddActive(7, kController);
  Shake(9, 0.001F);
  companion_.Disconnect();
  Shake(kController, 0.003F);
  EXPECT_EQ(runtime_.Host().QueuedEvents(), 0U);
  ASSERT_TRUE(companion_.Connect());
  Fence();
  EXPECT_EQ(PulseOf(kController, 0.002F).value().durationMicroseconds, 2000);
}

}  // namespace
}  // namespace ombrel::test
