// Controllers as the provider sees them: announced when the companion first tells of one, and shaken when the runtime
// asks for it.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <limits>
#include <mutex>
#include <optional>
#include <vector>

#include "controller_fixture.h"
#include "runtime/clock.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

using testing::Contains;

// As a pulse tells it.
std::uint32_t CounterMicroseconds() {
  const double seconds = bench::runtime::TicksToSeconds(bench::runtime::NowTicks());
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(seconds * 1e6));
}

// In the place of the driver's WriteFile.
std::mutex writesMutex;
std::vector<DWORD> writes;  // their sizes

BOOL WINAPI NotedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
  {
    const std::lock_guard guard(writesMutex);
    writes.push_back(size);
  }
  return WriteFile(file, bytes, size, written, overlapped);
}

class ControllerTest : public ControllerFixture {
 protected:
  void Shake(std::uint32_t index, float seconds) {
    runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(index), 1, seconds, 100.0F, 0.5F);
    Provider().RunFrame();
    shakenBy_ = CounterMicroseconds();
  }
  // Shakes it until the companion gets a pulse: one that waits too long for a busy machine is dropped.
  std::optional<bench::HapticPulse> PulseOf(std::uint32_t index, float seconds) {
    constexpr std::uint32_t kTimes = 5;
    for (std::uint32_t time = 0; time < kTimes; ++time) {
      Shake(index, seconds);
      const auto received = server.Next(kTimeoutMs / kTimes);
      if (received && received->message.Is(bench::MessageType::HapticPulse)) {
        return bench::DecodeHapticPulse(received->message.payload);
      }
    }
    return std::nullopt;
  }

  std::uint32_t shakenBy_ = 0;  // when the last frame with a vibration was over
};

TEST_F(ControllerTest, IsAnnouncedByItsFirstRecord) {
  Announce(12);
  const auto added = runtime.Host().Added();
  ASSERT_EQ(added.size(), 2U);
  EXPECT_EQ(added[1].serial, "OmbrelControllerV02ID12");
  EXPECT_EQ(added[1].deviceClass, vr::TrackedDeviceClass_Controller);
  EXPECT_THAT(LogLines(), Contains("New driver registered (serial OmbrelControllerV02ID12) with status 1 \n"));
}

TEST_F(ControllerTest, IsAnnouncedOnce) {
  for (int i = 0; i < 3; ++i) Announce(12);
  EXPECT_EQ(runtime.Host().Added().size(), 2U);
}

TEST_F(ControllerTest, EachIdIsOneOfItsOwn) {
  for (const std::uint32_t id : {0U, 1U, 0xFFFFFFFFU}) Announce(id);
  const auto added = runtime.Host().Added();
  ASSERT_EQ(added.size(), 4U);
  EXPECT_EQ(added[1].serial, "OmbrelControllerV02ID0");
  EXPECT_EQ(added[2].serial, "OmbrelControllerV02ID1");
  EXPECT_EQ(added[3].serial, "OmbrelControllerV02ID-1");
}

TEST_F(ControllerTest, RefusalIsLogged) {
  runtime.Host().RefuseDevice("OmbrelControllerV02ID3");
  Announce(3);
  EXPECT_THAT(LogLines(), Contains("New driver registered (serial OmbrelControllerV02ID3) with status 0 \n"));
}

TEST_F(ControllerTest, OneThatIsRefusedIsNotAnnouncedAgain) {
  runtime.Host().RefuseDevice("OmbrelControllerV02ID3");
  for (int i = 0; i < 3; ++i) Announce(3);
  EXPECT_EQ(runtime.Host().Added().size(), 2U);
  EXPECT_EQ(runtime.Poses().Count(kIndex), 0U);
}

TEST_F(ControllerTest, FirstRecordDoesNotSetItsState) {
  bench::ControllerRecord record;
  record.controllerId = 5;
  record.pose[3] = 4.0F;
  SendRecord(record);
  vr::ITrackedDeviceServerDriver& controller = Activate();
  EXPECT_EQ(PoseOf(controller).vecPosition[0], 0.0);
  EXPECT_EQ(runtime.Poses().Count(kIndex), 0U);
  SendRecord(record);
  EXPECT_EQ(PoseOf(controller).vecPosition[0], 4.0);
  EXPECT_EQ(runtime.Poses().Count(kIndex), 1U);
}

TEST_F(ControllerTest, FirstRecordIsNotAppliedEvenIfItsControllerIsActivatedAtOnce) {
  runtime.Host().ActivateAtOnce();
  bench::ControllerRecord record;
  record.controllerId = 5;
  record.pressedButtons = 0x1;
  SendRecord(record);
  EXPECT_EQ(runtime.Poses().Count(kIndex), 0U);
  EXPECT_THAT(NewUpdates(), testing::ElementsAre("/proximity true", "/input/trackpad/x 0.800000"));
  SendRecord(record);
  EXPECT_EQ(runtime.Poses().Count(kIndex), 1U);
  EXPECT_THAT(NewUpdates(), testing::ElementsAre("/input/system/click true"));
}

TEST_F(ControllerTest, VibrationOfATenthOfASecondWrapsIn16Bits) {
  AddActive(7, 1);
  const auto pulse = PulseOf(1, 0.1F);
  ASSERT_TRUE(pulse.has_value());
  EXPECT_EQ(pulse->controllerId, 7U);
  EXPECT_EQ(pulse->durationMicroseconds, 34464);
}

TEST_F(ControllerTest, ShortVibrationsAreSentInMicroseconds) {
  AddActive(7, 1);
  const auto pulse = PulseOf(1, 0.005F);
  ASSERT_TRUE(pulse.has_value());
  EXPECT_EQ(pulse->durationMicroseconds, 5000);
}

TEST_F(ControllerTest, AVibrationsTimeIsThatOfItsFrame) {
  AddActive(7, 1);
  const std::uint32_t before = CounterMicroseconds();
  const auto pulse = PulseOf(1, 0.001F);
  ASSERT_TRUE(pulse.has_value());
  // The low 32 bits begin anew every 72 minutes.
  EXPECT_LE(pulse->timestampMicroseconds - before, shakenBy_ - before);
}

TEST_F(ControllerTest, AVibrationIsWrittenInThreeParts) {
  AddActive(7, 1);
  const ModuleImport noted(module.Handle(), "WriteFile", reinterpret_cast<void*>(&NotedWriteFile));
  writes.clear();
  ASSERT_TRUE(PulseOf(1, 0.001F).has_value());
  const std::lock_guard guard(writesMutex);
  EXPECT_THAT(writes, testing::ElementsAre(4, 4, 12)) << "length, type and payload";
}

TEST_F(ControllerTest, VibrationIsForTheControllerOfItsContainer) {
  AddActive(7, 1);
  AddActive(8, 2);
  EXPECT_EQ(PulseOf(2, 0.001F).value().controllerId, 8U);
  EXPECT_EQ(PulseOf(1, 0.001F).value().controllerId, 7U);
}

TEST_F(ControllerTest, VibrationIsLostWhileTheLinkIsDown) {
  AddActive(7, 1);
  server.Close();
  Shake(1, 0.001F);
  EXPECT_EQ(runtime.Host().QueuedEvents(), 0U);
  ASSERT_TRUE(server.Open());
  ASSERT_TRUE(server.WaitForConnection(kTimeoutMs));
  Fence();
  EXPECT_EQ(PulseOf(1, 0.002F).value().durationMicroseconds, 2000) << "the one before is not sent late";
}

TEST_F(ControllerTest, VibrationForAnUnknownContainerIsDropped) {
  AddActive(7, 1);
  Shake(9, 0.001F);
  EXPECT_EQ(PulseOf(1, 0.002F).value().durationMicroseconds, 2000);
}

// Conversions that the language leaves open are made defined: cut off, nothing for what is no number, then 16 bits.
TEST_F(ControllerTest, OddDurationsAreSentAsDefinedNumbers) {
  AddActive(7, 1);
  const float infinity = std::numeric_limits<float>::infinity();
  const std::pair<float, std::uint16_t> cases[] = {{0.0F, 0},       {-0.001F, 65536 - 1000},
                                                   {0.131072F, 0},  {infinity, 0},
                                                   {-infinity, 0},  {1e30F, 0},
                                                   {4294.9673F, 0}, {std::numeric_limits<float>::quiet_NaN(), 0}};
  for (const auto& [seconds, expected] : cases) {
    const auto pulse = PulseOf(1, seconds);
    ASSERT_TRUE(pulse.has_value()) << seconds;
    EXPECT_EQ(pulse->durationMicroseconds, expected) << seconds;
  }
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
