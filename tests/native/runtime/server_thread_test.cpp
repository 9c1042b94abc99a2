#include "runtime/server_thread.h"

#include <atomic>
#include <stdexcept>

#include <gtest/gtest.h>

#include "runtime/thread_id.h"

#include "base/wait.h"

namespace bench {
namespace {

using namespace std::chrono_literals;

TEST(ServerThread, RunsTasksOnOneThreadOfItsOwn) {
  ServerThread thread;
  std::uint32_t first = 0;
  std::uint32_t second = 0;
  thread.Run([&] { first = runtime::ThreadId(); });
  thread.Run([&] { second = runtime::ThreadId(); });
  EXPECT_EQ(first, second);
  EXPECT_EQ(first, thread.ThreadId());
  EXPECT_NE(first, runtime::ThreadId());
}

TEST(ServerThread, HandsATasksExceptionToItsCaller) {
  ServerThread thread;
  EXPECT_THROW(thread.Run([] { throw std::runtime_error("no"); }), std::runtime_error);
  EXPECT_NO_THROW(thread.Run([] {}));
}

TEST(ServerThread, TicksGoOnWhileTasksRunInBetween) {
  ServerThread thread;
  std::atomic<int> ticks = 0;
  thread.SetTick([&] { ++ticks; }, 1000.0);
  ASSERT_TRUE(WaitUntil([&] { return ticks > 3; }, 10s));
  bool ran = false;
  thread.Run([&] { ran = true; });
  EXPECT_TRUE(ran);
  const int before = ticks;
  EXPECT_TRUE(WaitUntil([&] { return ticks > before + 3; }, 10s));
}

TEST(ServerThread, NoTickRunsAfterTheyWereStopped) {
  ServerThread thread;
  std::atomic<int> ticks = 0;
  thread.SetTick([&] { ++ticks; }, 1000.0);
  ASSERT_TRUE(WaitUntil([&] { return ticks > 0; }, 10s));
  thread.SetTick({}, 0.0);
  const int after = ticks;
  EXPECT_FALSE(WaitUntil([&] { return ticks != after; }, 30ms));
}

}  // namespace
}  // namespace bench
