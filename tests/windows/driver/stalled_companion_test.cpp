// Back pressure: a companion that does not read its pipe.
#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <span>
#include <thread>
#include <vector>

#include "base/wait.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "silent_pipes.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using bench::scenarios::SilentPipes;

constexpr std::uint32_t kTimeoutMs = 10'000;

class StalledCompanionTest : public DriverTest {
 protected:
  // Connected, with one controller that the runtime may let vibrate.
  void SetUp() override {
    InitAndActivateHeadset();
    ASSERT_TRUE(IsConnected());
    runtime.Host().Added().at(1).driver->Activate(1);
  }
  // Both pipes are open, and the driver has read a record, and so sends as well.
  [[nodiscard]] bool IsConnected() {
    const std::size_t poses = runtime.Poses().Count(0);
    if (!pipes_.WaitForDriver(kTimeoutMs)) return false;
    if (!pipes_.Write(companion::EncodeControllerUpdate({.controllerId = 7}))) return false;
    if (!pipes_.Write(companion::EncodeQuaternionAndPosition({}, {}))) return false;
    return runtime.Journal().WaitUntil([&] { return runtime.Poses().Count(0) > poses; },
                                       std::chrono::milliseconds(kTimeoutMs));
  }
  void SendPulse(float seconds = 0.01F) {
    runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(1), 1, seconds, 100, 1);
    Provider().RunFrame();
  }
  // That many bytes, or fewer when none comes for `timeoutMs`.
  [[nodiscard]] std::vector<std::uint8_t> Read(std::size_t count, std::uint32_t timeoutMs = kTimeoutMs) {
    std::vector<std::uint8_t> bytes(count);
    std::size_t got = 0;
    for (std::size_t more = 1; got < count && more > 0; got += more) {
      more = pipes_.Read(std::span(bytes).subspan(got), got == 0 ? timeoutMs : kTimeoutMs);
    }
    bytes.resize(got);
    return bytes;
  }
  // The duration of the next pulse in microseconds; 0 when none comes for a while.
  [[nodiscard]] int ReadPulse() {
    const auto bytes = Read(kPulseBytes, 100);
    return bytes.size() == kPulseBytes && bytes[4] == 11 ? bytes[16] + 256 * bytes[17] : 0;
  }
  // Sends pulses until one is being written: the first byte of it has come.
  [[nodiscard]] bool BeginsToWrite() {
    return bench::WaitUntil(
        [&] {
          SendPulse();
          return Read(1, 100) == std::vector<std::uint8_t>{12};
        },
        std::chrono::milliseconds(kTimeoutMs));
  }
  // The duration of the first pulse that comes once the companion reads, of those that are sent from now on.
  [[nodiscard]] int ReadPulseOf(float seconds) {
    int duration = 0;
    static_cast<void>(bench::WaitUntil(
        [&] {
          SendPulse(seconds);
          return (duration = ReadPulse()) != 0;
        },
        std::chrono::milliseconds(kTimeoutMs)));
    return duration;
  }

  static constexpr std::size_t kPulseBytes = 20;
  SilentPipes pipes_{SilentPipes::Which::kBoth, 0};
};

TEST_F(StalledCompanionTest, GetsTheRestOfAMessageThatItPausedInTheMiddleOf) {
  ASSERT_TRUE(BeginsToWrite());
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  const auto rest = Read(kPulseBytes - 1);
  ASSERT_EQ(rest.size(), kPulseBytes - 1);
  EXPECT_THAT(std::span(rest).first(11), testing::ElementsAre(0, 0, 0, 11, 0, 0, 0, 7, 0, 0, 0));
  EXPECT_EQ(ReadPulseOf(0.02F), 20000) << "the stream is in step";
}

TEST_F(StalledCompanionTest, IsLetGoByCleanup) {
  ASSERT_TRUE(BeginsToWrite());
  Provider().Cleanup();
  EXPECT_TRUE(Read(kPulseBytes - 1, 100).empty()) << "the write that waits for it is cancelled";
}

TEST_F(StalledCompanionTest, IsConnectedAnewWhenItGoesInTheMiddleOfAMessage) {
  ASSERT_TRUE(BeginsToWrite());
  ASSERT_EQ(Read(3).size(), 3U);
  pipes_.DisconnectFirstPipe();
  EXPECT_TRUE(pipes_.WaitForFirstPipe(kTimeoutMs));
}

}  // namespace
}  // namespace ombrel::test
