#include "platform/worker.h"

#include <gtest/gtest.h>

#include <atomic>

#include "support/background.h"
#include "support/wait.h"

namespace ombrel::test {
namespace {

constexpr std::uint32_t kPatienceMs = static_cast<std::uint32_t>(kPatience.count());

TEST(Worker, WorksWheneverItIsTold) {
  Worker worker;
  std::atomic<int> runs{0};
  ASSERT_TRUE(worker.Start([&] { ++runs; }));
  for (int seen = 0; seen < 5; ++seen) {
    const int before = runs;
    worker.Notify();
    EXPECT_TRUE(WaitUntil([&] { return runs > before; }));
  }
  EXPECT_TRUE(worker.StopFor(kPatienceMs));
}

TEST(Worker, WorksOnceMoreWhenItIsToldInTheMiddle) {
  Worker worker;
  Barrier busy;
  std::atomic<int> runs{0};
  ASSERT_TRUE(worker.Start([&] {
    ++runs;
    busy.Pass();
  }));
  ASSERT_TRUE(busy.WaitForVisitor());
  worker.Notify();
  busy.Open();
  EXPECT_TRUE(WaitUntil([&] { return runs == 2; }));
  EXPECT_TRUE(worker.StopFor(kPatienceMs));
}

TEST(Worker, StopsWithABound) {
  Worker worker;
  Barrier busy;
  ASSERT_TRUE(worker.Start([&] { busy.Pass(); }));
  ASSERT_TRUE(busy.WaitForVisitor());
  EXPECT_FALSE(worker.StopFor(2));
  busy.Open();
  EXPECT_TRUE(worker.StopFor(kPatienceMs));
}

TEST(Worker, CanBeStartedAgain) {
  Worker worker;
  std::atomic<int> runs{0};
  EXPECT_TRUE(worker.StopFor(0)) << "never started";
  for (int i = 1; i <= 3; ++i) {
    ASSERT_TRUE(worker.Start([&] { ++runs; }));
    EXPECT_TRUE(WaitUntil([&] { return runs == i; }));
    EXPECT_TRUE(worker.StopFor(kPatienceMs));
    worker.Notify();
  }
  EXPECT_EQ(runs, 3);
}

}  // namespace
}  // namespace ombrel::test
