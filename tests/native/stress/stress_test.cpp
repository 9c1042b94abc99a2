// Everything at once, every call of every device from two threads: the thread sanitizer is the judge, and every thread
// must have had work.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <list>
#include <vector>

#include "stress_companion.h"
#include "stress_runtime.h"
#include "support/background.h"
#include "tripwire_renderer.h"

namespace ombrel::test {
namespace {

constexpr std::int32_t kDirectMode = 0, kVirtualDisplay = 1;
constexpr std::uint32_t kConnections = 5, kMostConnections = 50, kMessagesPerConnection = 1500;
constexpr std::uint32_t kEnough = 100;

class StressTest : public testing::TestWithParam<std::int32_t> {
 protected:
  StressTest() { TripwireRenderer::Forget(); }
  ~StressTest() override { StopThreads(); }

  // Calls it over and over on a thread of its own.
  void Repeat(std::function<void()> step) {
    threads_.emplace_back([this, step = std::move(step)] {
      while (!isOver_) {
        step();
        std::this_thread::yield();
      }
    });
  }
  void StopThreads() {
    isOver_ = true;
    threads_.clear();
  }

  // How much each thread gets is the scheduler's affair, but none may have starved.
  [[nodiscard]] bool HasEverybodyWorked() const {
    const StressRuntime::Work& done = runtime_.Done();
    const TripwireRenderer::Work& drawn = TripwireRenderer::Done();
    std::vector<const Counter*> counts{
        &done.serverTicks,    &done.vibrations,          &done.frames,           &done.inputs,
        &done.frequencies,    &done.reactivations,       &done.headPosesSent,    &done.sensorPosesSent,
        &done.headPosesAsked, &done.controllerPosesSent, &done.sensorPosesAsked, &done.controllerPosesAsked};
    const bool isDirect = GetParam() == kDirectMode;
    if (isDirect) counts.insert(counts.end(), {&drawn.layers, &done.swapSets});
    if (!isDirect) counts.push_back(&done.vsyncs);
    const bool hasCopied = isDirect || drawn.copies >= kConnections;
    return hasCopied && std::ranges::all_of(counts, [](const Counter* count) { return *count >= kEnough; });
  }

  std::atomic<bool> isOver_{false};
  // Ahead of the runtime, whose link looks for it from the start.
  StressCompanion companion_;
  StressRuntime runtime_{GetParam()};
  std::list<Background> threads_;
};

TEST_P(StressTest, NoThreadSeesHalfOfWhatAnotherDoes) {
  ASSERT_TRUE(runtime_.Start());
  for (const auto call : {&StressRuntime::Tick, &StressRuntime::PresentFrame, &StressRuntime::ChangeSwapTextures,
                          &StressRuntime::UseDevices}) {
    for (int thread = 0; thread < 2; ++thread) Repeat([this, call] { (runtime_.*call)(); });
  }
  std::uint32_t connections = 0;
  while (connections < kConnections || (connections < kMostConnections && !HasEverybodyWorked())) {
    ASSERT_TRUE(companion_.SendThrough(kMessagesPerConnection, true));
    ++connections;
  }
  StopThreads();

  const StressRuntime::Work& done = runtime_.Done();
  EXPECT_EQ(done.halfPoses, 0U);
  EXPECT_EQ(TripwireRenderer::Done().mixedLayers, 0U);
  EXPECT_EQ(companion_.Done().wrongMessages, 0U);
  EXPECT_EQ(companion_.Done().announcements, connections);
  EXPECT_GE(companion_.Done().haptics, connections);
  EXPECT_GE(TripwireRenderer::Done().setUps, connections);
  EXPECT_EQ(done.activations, 2 + StressCompanion::kControllers);
  EXPECT_TRUE(HasEverybodyWorked());
}

TEST_P(StressTest, StopsAndStartsAgainInTheMiddleOfAStream) {
  const StressRuntime::Work& done = runtime_.Done();
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(runtime_.Start());
    const std::uint32_t heads = done.headPosesSent, controllers = done.controllerPosesSent;
    Background sender([this] { EXPECT_FALSE(companion_.SendThrough(0xFFFFFFFF, false)) << "it was never cut off"; });
    // The headset may be activated before the companion comes, or in the middle of its stream.
    EXPECT_TRUE(round == 0 || WaitUntil([this] { return runtime_.HasControllers(); }));
    EXPECT_TRUE(WaitUntil([&] {
      runtime_.Tick();
      return done.headPosesSent > heads + 500 && done.controllerPosesSent > controllers + kEnough;
    }));
    runtime_.Stop();
    const std::uint32_t headsAtTheEnd = done.headPosesSent, controllersAtTheEnd = done.controllerPosesSent;
    EXPECT_TRUE(sender.Finishes());
    EXPECT_EQ(done.headPosesSent, headsAtTheEnd) << "a pose came behind the end";
    EXPECT_EQ(done.controllerPosesSent, controllersAtTheEnd);
  }
  EXPECT_EQ(done.halfPoses, 0U);
}

TEST_P(StressTest, LosesItsDeviceInTheMiddleOfAStream) {
  constexpr std::uint32_t kLosses = 3;
  const TripwireRenderer::Work& drawn = TripwireRenderer::Done();
  ASSERT_TRUE(runtime_.Start());
  Repeat([this] { runtime_.Tick(); });
  Repeat([this] { runtime_.PresentFrame(); });
  Repeat([this] { runtime_.ChangeSwapTextures(); });
  for (std::uint32_t loss = 0; loss < kLosses; ++loss) {
    Background sender([this] { EXPECT_FALSE(companion_.SendThrough(0xFFFFFFFF, false)) << "it was never cut off"; });
    const std::uint32_t before = drawn.layers + drawn.copies;
    EXPECT_TRUE(WaitUntil([&] { return drawn.layers + drawn.copies > before + 10; }));
    EXPECT_EQ(drawn.remakes, loss);
    TripwireRenderer::LoseDevices();
    EXPECT_TRUE(sender.Finishes());
  }
  EXPECT_TRUE(WaitUntil([&] { return drawn.remakes == kLosses; }));
}

INSTANTIATE_TEST_SUITE_P(BothModes, StressTest, testing::Values(kDirectMode, kVirtualDisplay));

}  // namespace
}  // namespace ombrel::test
