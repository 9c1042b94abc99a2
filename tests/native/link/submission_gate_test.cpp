#include "link/submission_gate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "support/wait.h"

namespace ombrel::test {
namespace {

bool LetsIn(SubmissionGate& gate) { return static_cast<bool>(SubmissionGate::Pass(gate)); }

TEST(SubmissionGate, IsClosedAtFirst) {
  SubmissionGate gate;
  EXPECT_FALSE(gate.IsOpen());
  EXPECT_FALSE(LetsIn(gate));
}

TEST(SubmissionGate, LetsInWhileItIsOpen) {
  SubmissionGate gate;
  gate.Open();
  EXPECT_TRUE(LetsIn(gate));
  gate.Close();
  EXPECT_FALSE(LetsIn(gate));
  gate.Open();
  EXPECT_TRUE(LetsIn(gate));
}

TEST(SubmissionGate, DrainingReturnsAtOnceWhenNobodyIsInside) {
  SubmissionGate gate;
  gate.Open();
  { const SubmissionGate::Pass pass(gate); }
  gate.Close();
  gate.Drain();
}

TEST(SubmissionGate, DrainingWaitsForTheLastOneInside) {
  SubmissionGate gate;
  gate.Open();
  auto pass = std::make_unique<SubmissionGate::Pass>(gate);
  gate.Close();
  std::atomic<bool> drained{false};
  std::thread drainer([&] {
    gate.Drain();
    drained = true;
  });
  EXPECT_FALSE(LetsIn(gate));
  EXPECT_FALSE(drained);
  pass.reset();
  EXPECT_TRUE(WaitUntil([&] { return drained.load(); }));
  drainer.join();
}

// Threads enter and leave while the gate opens and closes: after a drain none is inside.
TEST(SubmissionGateStress, NobodyIsInsideBehindADrain) {
  SubmissionGate gate;
  std::atomic<bool> done{false};
  int guarded = 0;  // without a lock: the thread sanitizer would report an overlap
  std::atomic<int> entries{0};
  std::thread visitor([&] {
    while (!done) {
      const SubmissionGate::Pass pass(gate);
      if (!pass) continue;
      ++guarded;
      ++entries;
    }
  });
  for (int i = 0; i < 300; ++i) {
    gate.Open();
    const int before = entries;
    EXPECT_TRUE(WaitUntil([&] { return entries > before; }));
    gate.Close();
    gate.Drain();
    ++guarded;
  }
  done = true;
  visitor.join();
  EXPECT_EQ(guarded, entries + 300);
}

}  // namespace
}  // namespace ombrel::test
