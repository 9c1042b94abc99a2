// Finished frames on their way to the companion, and the wait for a pose behind each.
#include "core_fixture.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

class VirtualHandOffTest : public OmbrelCoreTest {
 protected:
  // Streams, but with no frame handed off yet: what the fixture's first frame counted is taken back by a reconnect.
  void SetUp() override {
    PrepareOutput();
    SetUpCore();
    ASSERT_TRUE(ConnectWhole());
    ASSERT_TRUE(WaitForCall("ClearOutput 0"));
  }
  // Hands frames off until one is taken. It waits in there.
  void HandOffTaken() {
    while (renderer_->journal.Count("Sharing") == 0) core_->Frames().HandOffTexture(5);
  }
};

TEST_F(VirtualHandOffTest, GoesThroughItsStepsInOrderAndWaitsForAPose) {
  Background frame([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("ClearOutput 1"));
  EXPECT_TRUE(frame.StaysBlocked());
  EXPECT_EQ(renderer_->journal.From(5),
            (Lines{"Sharing", "CopyToOutput 5 0 16", "ReleaseOutput 0", "AcquireOutput 1 16", "ClearOutput 1"}));
  ASSERT_TRUE(SendPose());
  EXPECT_TRUE(frame.Finishes());
  EXPECT_TRUE(Receive());
}

TEST_F(VirtualHandOffTest, AnswersEachPoseWithOneFrameAtMost) {
  Background frame([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(SendPose());
  ASSERT_TRUE(frame.Finishes());
  // Two poses are left.
  core_->Frames().HandOffTexture(6);
  core_->Frames().HandOffTexture(7);
  Background last([this] { core_->Frames().HandOffTexture(8); });
  ASSERT_TRUE(WaitForCall("CopyToOutput 8 1 16"));
  EXPECT_TRUE(last.StaysBlocked());
  ASSERT_TRUE(SendPose());
  EXPECT_TRUE(last.Finishes());
}

TEST_F(VirtualHandOffTest, IsReleasedByADrop) {
  Background frame([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
  ASSERT_TRUE(frame.StaysBlocked());
  companion_.Disconnect();
  EXPECT_TRUE(frame.Finishes());
}

TEST_F(VirtualHandOffTest, IsReleasedWhenTheLinkStops) {
  Background frame([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
  ASSERT_TRUE(frame.StaysBlocked());
  core_->StopLink();
  EXPECT_TRUE(frame.Finishes());
}

TEST_F(VirtualHandOffTest, CountsAnewForEachConnection) {
  Background frame([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
  for (int i = 0; i < 5; ++i) ASSERT_TRUE(SendPose());
  ASSERT_TRUE(frame.Finishes());
  companion_.Offer();
  companion_.Disconnect();
  ASSERT_TRUE(companion_.Accept());
  ASSERT_TRUE(WaitForCall("CreateOutputTextures", 3));
  renderer_->journal.Clear();
  Background again([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("CopyToOutput 5 0 16"));
  // The five poses were the last companion's.
  EXPECT_TRUE(again.StaysBlocked());
  ASSERT_TRUE(SendPose());
  EXPECT_TRUE(again.Finishes());
}

TEST_F(VirtualHandOffTest, ATextureThatIsHeldDropsTheFrameAndCountsNothing) {
  renderer_->canCopy = false;
  HandOffTaken();
  EXPECT_EQ(renderer_->journal.From(4 + 1), (Lines{"Sharing", "CopyToOutput 5 0 16"}));
  renderer_->canCopy = true;
  Background frame([this] { core_->Frames().HandOffTexture(6); });
  ASSERT_TRUE(WaitForCall("CopyToOutput 6 0 16"));
  EXPECT_TRUE(frame.StaysBlocked());
  ASSERT_TRUE(SendPose());
  EXPECT_TRUE(frame.Finishes());
}

TEST_F(VirtualHandOffTest, CopiesNothingIntoAnOutputThatCouldNotBeHad) {
  renderer_->canAcquireOutput = false;
  Background frame([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
  for (int i = 0; i < 2; ++i) ASSERT_TRUE(SendPose());
  ASSERT_TRUE(frame.Finishes());
  renderer_->journal.Clear();
  core_->Frames().HandOffTexture(6);
  EXPECT_EQ(Calls(), (Lines{"SkipCopy 6 1 16", "ReleaseOutput 1", "AcquireOutput 0 16"}));
}

TEST_F(VirtualHandOffTest, ClearsEachOutputWhenItIsFirstHadInAConnectionAndNeverAgain) {
  renderer_->canAcquireOutput = false;
  Background frame([this] { HandOffTaken(); });
  ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
  for (int i = 0; i < 7; ++i) ASSERT_TRUE(SendPose());
  ASSERT_TRUE(frame.Finishes());
  renderer_->canAcquireOutput = true;
  renderer_->journal.Clear();
  for (int i = 0; i < 4; ++i) core_->Frames().HandOffTexture(6);
  Lines calls = Calls();
  std::erase_if(calls, [](const std::string& line) { return line.starts_with("Release"); });
  // Output 0 was cleared at set-up.
  EXPECT_EQ(calls, (Lines{"SkipCopy 6 1 16", "AcquireOutput 0 16", "CopyToOutput 6 0 16", "AcquireOutput 1 16",
                          "ClearOutput 1", "CopyToOutput 6 1 16", "AcquireOutput 0 16", "CopyToOutput 6 0 16",
                          "AcquireOutput 1 16"}));
}

TEST_F(VirtualHandOffTest, DoesNothingWhileTheLinkIsDown) {
  companion_.Disconnect();
  ASSERT_TRUE(listener_.journal.WaitForLine("down"));
  renderer_->journal.Clear();
  core_->Frames().HandOffTexture(5);
  EXPECT_TRUE(Calls().empty());
}

}  // namespace
}  // namespace ombrel::test
