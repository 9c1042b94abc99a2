#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ombrel/protocol.h>

#include "made_up_session.h"

namespace checker::test {
namespace {

constexpr std::uint32_t kFailed = 0x80004005, kInvalidCall = 0x887A0001, kTimedOut = 0x102, kAbandoned = 0x80;
constexpr std::uint32_t kAccessViolation = 0xC0000005, kNotConnected = 233;

// The rules about textures, the block and a connection's end.
class JudgeFramesTest : public testing::Test {
 protected:
  // By the companion, of texture 0.
  void HoldFor(double spanMs, double ms) {
    session.Acquire(Side::kCompanion, 0, ms);
    session.Release(Side::kCompanion, 0, ms + spanMs);
  }

  MadeUpSession session;
};

TEST_F(JudgeFramesTest, WantsFramesTaken) {
  session.Remove(EventKind::kAcquired);
  session.Remove(EventKind::kReleased);
  session.Remove(EventKind::kTextureRead);
  EXPECT_EQ(session.Broken(), "P15");
  EXPECT_EQ(session.Broken(Watched::kDriver), "");
  HoldFor(1, 2290);
  EXPECT_EQ(session.Broken(), "") << "within two seconds";
}

TEST_F(JudgeFramesTest, WantsTexturesReleasedWithKeyZero) {
  session.CutOffAt(2900);
  session.Acquire(Side::kCompanion, 0, 2910);
  session.Release(Side::kCompanion, 0, 2911).key = 1;
  EXPECT_EQ(session.Broken(), "P16");
}

TEST_F(JudgeFramesTest, WantsKeyZero) {
  session.Acquire(Side::kCompanion, 0, 1000, kTimedOut).key = 1;
  session.Acquire(Side::kCompanion, 0, 1001, kTimedOut);
  EXPECT_EQ(session.Broken(), "P16");
}

TEST_F(JudgeFramesTest, WantsOnlyWhatIsHeldReleased) {
  session.Release(Side::kCompanion, 0, 1000, kFailed);
  session.Acquire(Side::kCompanion, 0, 1001, kInvalidCall);
  EXPECT_EQ(session.Broken(), "P17");
  EXPECT_EQ(session.Violations().at(0).count, 2U);
}

TEST_F(JudgeFramesTest, LeavesOtherTexturesOfTheCompanionAlone) {
  Event& other = session.Acquire(Side::kCompanion, 0, 1000, kInvalidCall);
  other.subject = 0x4000002A;
  other.key = 3;
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeFramesTest, DoesNotBlameTheCompanionForADriverThatDied) {
  session.Acquire(Side::kCompanion, 0, 1000, kAbandoned);
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeFramesTest, WantsTexturesReadWhileTheyAreHeld) {
  session.Read(0, 1001);
  EXPECT_EQ(session.Broken(), "P18");
}

TEST_F(JudgeFramesTest, WantsEachFrameReadOnce) {
  session.CutOffAt(2900);
  session.PassFrame(0, 2900);
  session.Acquire(Side::kCompanion, 0, 2910);
  session.Release(Side::kCompanion, 0, 2911);
  EXPECT_EQ(session.Broken(), "") << "a look without reading is no frame";
  session.Acquire(Side::kCompanion, 0, 2912);
  session.Read(0, 2913);
  session.Read(0, 2914);
  session.Release(Side::kCompanion, 0, 2915);
  EXPECT_EQ(session.Broken(), "P19");
  EXPECT_EQ(session.Violations().at(0).count, 1U);
}

TEST_F(JudgeFramesTest, WantsNoTextureHeldForLong) {
  session.CutOffAt(2600);
  session.SendPoses(2600, 2990);
  session.Release(Side::kDriver, 0, 2600);
  HoldFor(490, 2601);
  EXPECT_EQ(session.Broken(), "") << "one long hold is the machine's";
  session.Acquire(Side::kCompanion, 1, 2602);
  session.Release(Side::kCompanion, 1, 3112);
  EXPECT_EQ(session.Broken(), "P20");
}

TEST_F(JudgeFramesTest, WantsNoHabitOfHoldingTexturesOverTheFramePeriod) {
  session.Remove(EventKind::kAcquired);
  session.Remove(EventKind::kReleased);
  session.Remove(EventKind::kTextureRead);
  session.PassFrame(0, 310);
  for (double ms = 1000; ms < 2900; ms += 100) HoldFor(30, ms);
  EXPECT_EQ(session.Broken(), "P20");
  session.Send(999, FrameRate(30));
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeFramesTest, LooksForTheHabitFromTenHoldsOn) {
  session.CutOffAt(400);
  session.SendPoses(400, 1990);
  for (double ms = 500; ms < 1000; ms += 100) HoldFor(30, ms);
  EXPECT_EQ(session.Broken(), "") << "five of nine";
  HoldFor(30, 1000);
  EXPECT_EQ(session.Broken(), "P20") << "six of ten";
}

TEST_F(JudgeFramesTest, AllowsLongHoldsInALongFramePeriod) {
  session.CutOffAt(2200);
  session.SendPoses(2200, 3200);
  session.Send(500, FrameRate(2));
  HoldFor(400, 2250);
  EXPECT_EQ(session.Broken(), "");
  HoldFor(510, 2680);
  EXPECT_EQ(session.Broken(), "P20");
}

TEST_F(JudgeFramesTest, WantsTheDriverNotToWaitInVain) {
  for (double ms = 1006; ms < 2900; ms += 120) HoldFor(30, ms);
  EXPECT_EQ(session.Broken(), "") << "one in nine, which harmed nobody";
  for (double ms = 1026; ms < 2900; ms += 120) session.Acquire(Side::kDriver, 0, ms, kTimedOut);
  EXPECT_EQ(session.Broken(), "") << "found held, which harms nobody";
  for (double ms = 1026; ms < 2900; ms += 120) session.Acquire(Side::kDriver, 0, ms, kTimedOut).timeoutMs = 16;
  EXPECT_EQ(session.Broken(), "P20");
}

TEST_F(JudgeFramesTest, WantsBothPipesClosed) {
  session.AddPipe(EventKind::kPipeWritten, Pipe::kIn, 2000, 232);
  EXPECT_EQ(session.Broken(), "P21");
}

TEST_F(JudgeFramesTest, WantsTheFormerClientDisconnected) {
  session.CutOffAt(1500);
  session.Disconnect(1500);
  for (double ms = 1600; ms < 2900; ms += 100) session.AddPipe(EventKind::kPipeOpened, Pipe::kIn, ms, 231);
  EXPECT_EQ(session.Broken(), "P21");
}

// A pipe that is disconnected is busy until its program listens again or ends.
TEST_F(JudgeFramesTest, AllowsACompanionThatDisconnectsAndTakesLongToEnd) {
  session.CutOffAt(1500);
  session.Disconnect(1500);
  for (double ms = 1600; ms < 2900; ms += 100) session.AddPipe(EventKind::kPipeOpened, Pipe::kIn, ms, 231);
  session.Add(EventKind::kProcessEnded, 2900);
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeFramesTest, AllowsACompanionThatDisconnectsAndEnds) {
  session.CutOffAt(1500);
  session.Disconnect(1500);
  session.AddPipe(EventKind::kPipeOpened, Pipe::kIn, 1510, 231);
  for (double ms = 1600; ms < 2900; ms += 100) session.AddPipe(EventKind::kPipeOpened, Pipe::kIn, ms, 2);
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeFramesTest, AllowsThatThePipesAreBusyForAMoment) {
  session.CutOffAt(1500);
  session.Disconnect(1500);
  session.AddPipe(EventKind::kPipeOpened, Pipe::kIn, 1600, 231);
  session.Connect(1700);
  session.SendPoses(2000, 2990);
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeFramesTest, WantsThePipesClosedBeforeTheProcessEnds) {
  session.CutOffAt(2000);
  session.Disconnect(2010);
  Event& detached = session.Add(EventKind::kDetached, 2005);
  detached.side = Side::kCompanion;
  detached.result = 1;
  session.Add(EventKind::kProcessEnded, 2020).result = 0;
  EXPECT_EQ(session.Broken(), "P21");
}

TEST_F(JudgeFramesTest, WantsNoCrashWhileTheDriverIsConnected) {
  session.CutOffAt(2000);
  session.Disconnect(2010);
  session.Add(EventKind::kProcessEnded, 2020).result = kAccessViolation;
  EXPECT_EQ(session.Broken(), "P21");
}

TEST_F(JudgeFramesTest, DoesNotBlameTheCompanionForACrashAfterTheEnd) {
  session.CutOffAt(2000);
  session.Disconnect(2010);
  session.Add(EventKind::kProcessEnded, 2120).result = kAccessViolation;
  EXPECT_EQ(session.Broken(), "") << "closed a while before";
  session.CutOffAt(2010);
  session.AddPipe(EventKind::kPipeRead, Pipe::kOut, 2010, kNotConnected);
  session.Add(EventKind::kProcessEnded, 2020).result = kAccessViolation;
  EXPECT_EQ(session.Broken(), "") << "disconnected";
}

// The driver may be told of the end of its pipe only after the process has gone.
TEST_F(JudgeFramesTest, AllowsAProcessThatClosesAndEndsAtOnce) {
  session.CutOffAt(2000);
  session.Disconnect(2030);
  session.Add(EventKind::kProcessEnded, 2020).result = 0;
  EXPECT_EQ(session.Broken(Watched::kDriver), "") << "its side was not watched";
  session.Add(EventKind::kDetached, 2015).side = Side::kCompanion;
  EXPECT_EQ(session.Broken(), "");
}

TEST_F(JudgeFramesTest, WantsTheBlockLetGo) {
  session.Add(EventKind::kBlockLeft, 3500);
  EXPECT_EQ(session.Broken(), "P22");
}

}  // namespace
}  // namespace checker::test
