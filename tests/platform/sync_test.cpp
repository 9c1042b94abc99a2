#include "platform/sync.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "support/wait.h"

namespace ombrel::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kLong = static_cast<std::uint32_t>(kPatience.count());

TEST(Mutex, IsHadByOneThreadAtATime) {
  Mutex mutex;
  const std::lock_guard guard(mutex);
  bool taken = true;
  std::thread([&] { taken = mutex.try_lock(); }).join();
  EXPECT_FALSE(taken);
}

TEST(Mutex, OrdersWhatItsHoldersDo) {
  Mutex mutex;
  int count = 0;
  const auto add = [&] {
    for (int i = 0; i < 1000; ++i) {
      const std::lock_guard guard(mutex);
      ++count;
    }
  };
  std::thread other(add);
  add();
  other.join();
  EXPECT_EQ(count, 2000);
}

TEST(Condition, WakesAWaiterWhoseConditionHolds) {
  Mutex mutex;
  Condition changed;
  bool ready = false;
  std::thread waker([&] {
    const std::lock_guard guard(mutex);
    ready = true;
    changed.NotifyAll();
  });
  std::unique_lock lock(mutex);
  changed.Wait(lock, [&] { return ready; });
  EXPECT_TRUE(ready);
  lock.unlock();
  waker.join();
}

TEST(Condition, GivesUpWhenTheTimeIsUp) {
  Mutex mutex;
  Condition changed;
  std::unique_lock lock(mutex);
  const auto begin = Clock::now();
  // A spurious wake-up says true; there are not hundreds of them in a row.
  int wakeUps = 0;
  while (wakeUps < 100 && changed.WaitFor(lock, 5)) ++wakeUps;
  EXPECT_LT(wakeUps, 100);
  EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(4));
}

TEST(WakeSignal, ReturnsAtOnceWhenItWasGivenSinceTheGenerationWasNoted) {
  WakeSignal signal;
  const std::uint32_t seen = signal.Generation();
  signal.WakeAll();
  EXPECT_TRUE(signal.WaitFor(seen, kLong));
}

TEST(WakeSignal, SaysWhenTheTimeWasUp) {
  const WakeSignal signal;
  EXPECT_FALSE(signal.WaitFor(signal.Generation(), 5));
}

TEST(WakeSignal, DoesNotWaitAtAllForNoTime) {
  const WakeSignal signal;
  EXPECT_FALSE(signal.WaitFor(signal.Generation(), 0));
}

TEST(WakeSignal, WakesEveryWaiter) {
  WakeSignal signal;
  const std::uint32_t seen = signal.Generation();
  std::atomic<int> woken{0};
  const auto wait = [&] {
    if (signal.WaitFor(seen, kLong)) ++woken;
  };
  std::thread first(wait), second(wait);
  signal.WakeAll();
  first.join();
  second.join();
  EXPECT_EQ(woken, 2);
}

}  // namespace
}  // namespace ombrel::test
