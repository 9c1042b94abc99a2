#include "companion/frame_turns.h"

#include <gtest/gtest.h>

#include <vector>

namespace companion {
namespace {

// The driver's side, driven by hand: which texture it holds, and what it does while the reader waits.
class FakeLocks : public FrameLocks {
 public:
  LockResult Acquire(int index, std::uint32_t timeoutMs) override {
    if (failed) return LockResult::Failed;
    if (driverHolds == index && timeoutMs != 0 && finishesWhileWaiting) FinishFrame();
    if (driverHolds == index) return LockResult::TimedOut;
    readerHolds.push_back(index);
    return LockResult::Acquired;
  }
  void Release(int index) override { std::erase(readerHolds, index); }

  void FinishFrame() { driverHolds = 1 - driverHolds; }

  int driverHolds = 0;  // -1: none
  bool finishesWhileWaiting = false;
  bool failed = false;
  std::vector<int> readerHolds;
};

class FrameTurnsTest : public testing::Test {
 protected:
  void ReadOne() {
    ASSERT_EQ(turns_.Next(10), TurnResult::FrameHeld);
    turns_.Done();
  }
  FakeLocks locks_;
  FrameTurns turns_{locks_};
};

TEST_F(FrameTurnsTest, WaitsForTheFirstFrameInTextureZero) {
  EXPECT_EQ(turns_.Next(10), TurnResult::NoFrame);
  locks_.FinishFrame();
  ASSERT_EQ(turns_.Next(10), TurnResult::FrameHeld);
  EXPECT_EQ(turns_.Index(), 0);
  EXPECT_EQ(locks_.readerHolds, std::vector<int>{0});
}

TEST_F(FrameTurnsTest, TakesAFrameThatComesDuringTheWait) {
  locks_.finishesWhileWaiting = true;
  EXPECT_EQ(turns_.Next(10), TurnResult::FrameHeld);
}

TEST_F(FrameTurnsTest, AlternatesAndHoldsNothingInBetween) {
  for (const int expected : {0, 1, 0, 1}) {
    locks_.FinishFrame();
    ASSERT_EQ(turns_.Next(10), TurnResult::FrameHeld);
    EXPECT_EQ(turns_.Index(), expected);
    turns_.Done();
    EXPECT_TRUE(locks_.readerHolds.empty());
  }
}

TEST_F(FrameTurnsTest, DoesNotTakeAnOldFrameWhileTheDriverIsBetweenTextures) {
  locks_.FinishFrame();
  ReadOne();
  locks_.driverHolds = -1;
  EXPECT_EQ(turns_.Next(10), TurnResult::NoFrame);
  EXPECT_TRUE(locks_.readerHolds.empty());
  locks_.driverHolds = 1;
  EXPECT_EQ(turns_.Next(10), TurnResult::NoFrame);
  locks_.driverHolds = 0;
  EXPECT_EQ(turns_.Next(10), TurnResult::FrameHeld);
}

TEST_F(FrameTurnsTest, ASlowReaderMissesFramesButKeepsStep) {
  locks_.FinishFrame();
  ReadOne();
  for (int i = 0; i < 4; ++i) locks_.FinishFrame();  // back to holding texture 1
  EXPECT_EQ(turns_.Next(10), TurnResult::NoFrame);
  locks_.FinishFrame();
  ASSERT_EQ(turns_.Next(10), TurnResult::FrameHeld);
  EXPECT_EQ(turns_.Index(), 1);
}

TEST_F(FrameTurnsTest, ADriverThatIsGoneLeavesNoFrames) {
  locks_.FinishFrame();
  ReadOne();
  locks_.driverHolds = -1;
  for (int i = 0; i < 10; ++i) EXPECT_EQ(turns_.Next(10), TurnResult::NoFrame);
}

TEST_F(FrameTurnsTest, ABrokenLockIsSaidSo) {
  locks_.failed = true;
  EXPECT_EQ(turns_.Next(10), TurnResult::Failed);
}

}  // namespace
}  // namespace companion
