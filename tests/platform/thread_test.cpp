#include "platform/thread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "platform/sync.h"
#include "support/wait.h"

namespace ombrel::test {
namespace {

constexpr std::uint32_t kThreadPatienceMs = static_cast<std::uint32_t>(kPatience.count());

TEST(Thread, RunsItsBodyAndIsForgottenWhenJoined) {
  Thread thread;
  std::atomic<bool> ran{false};
  ASSERT_TRUE(thread.Start([&] { ran = true; }));
  thread.Join();
  EXPECT_TRUE(ran);
  EXPECT_TRUE(thread.JoinFor(0));
}

TEST(Thread, JoiningOneThatWasNeverStartedDoesNothing) {
  Thread thread;
  thread.Join();
  EXPECT_TRUE(thread.JoinFor(0));
}

TEST(Thread, AJoinWithABoundGivesUpOnAThreadThatRuns) {
  WakeSignal end;
  const std::uint32_t seen = end.Generation();
  Thread thread;
  ASSERT_TRUE(thread.Start([&] { static_cast<void>(end.WaitFor(seen, kThreadPatienceMs)); }));
  EXPECT_FALSE(thread.JoinFor(2));
  end.WakeAll();
  EXPECT_TRUE(thread.JoinFor(kThreadPatienceMs));
}

TEST(Thread, CanBeStartedAgain) {
  Thread thread;
  std::atomic<int> runs{0};
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(thread.Start([&] { ++runs; }));
    thread.Join();
  }
  EXPECT_EQ(runs, 3);
}

TEST(Thread, IsJoinedWhenItsOwnerGoes) {
  std::atomic<bool> ran{false};
  {
    Thread thread;
    ASSERT_TRUE(thread.Start([&] { ran = true; }));
  }
  EXPECT_TRUE(ran);
}

}  // namespace
}  // namespace ombrel::test
