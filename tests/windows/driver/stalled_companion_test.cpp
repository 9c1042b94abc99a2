// A companion that takes nothing of what is written to it.
#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <future>

#include "companion/controller_record.h"
#include "runtime/wait.h"
#include "silent_pipes.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using bench::scenarios::SilentPipes;
using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kTimeoutMs = 10'000;

class StalledCompanionTest : public DriverTest {
 protected:
  // Connected, with one controller that the runtime may let vibrate.
  void SetUp() override {
    InitAndActivateHeadset();
    ASSERT_TRUE(pipes_.WaitForDriver(kTimeoutMs));
    ASSERT_TRUE(pipes_.Write(bench::EncodeControllerUpdate({.controllerId = 7})));
    ASSERT_TRUE(runtime.Journal().WaitUntil([&] { return runtime.Host().Added().size() == 2; },
                                            std::chrono::milliseconds(kTimeoutMs)));
    runtime.Host().Added().at(1).driver->Activate(1);
  }

  // RunFrame with so many vibrations to pass on.
  Clock::duration TimeFrameWithPulses(int count) {
    for (int pulse = 0; pulse < count; ++pulse) {
      runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(1), 1, 0.01F, 100, 1);
    }
    const auto begin = Clock::now();
    Provider().RunFrame();
    return Clock::now() - begin;
  }

  SilentPipes pipes_{SilentPipes::Which::kBoth, 0};
};

TEST_F(StalledCompanionTest, ManyPulsesHoldAFrameNoLongerThanOne) {
  const auto one = TimeFrameWithPulses(1);
  EXPECT_GE(one, std::chrono::milliseconds(400)) << "the companion did take the pulse";
  EXPECT_TRUE(bench::WaitUntil([&] { return TimeFrameWithPulses(1) > one / 2; }, std::chrono::milliseconds(kTimeoutMs)))
      << "the driver never tries again";
  EXPECT_LT(TimeFrameWithPulses(20), one / 2);
}

TEST_F(StalledCompanionTest, GetsPulsesAgainOnceItReads) {
  static_cast<void>(TimeFrameWithPulses(1));
  std::array<std::uint8_t, 64> buffer{};
  EXPECT_TRUE(bench::WaitUntil(
      [&] {
        auto frame = std::async(std::launch::async, [&] { return TimeFrameWithPulses(1); });
        return pipes_.Read(buffer, 100) > 0;
      },
      std::chrono::milliseconds(kTimeoutMs)));
}

}  // namespace
}  // namespace ombrel::test
