// Finished frames on their way to the companion, and the wait for a pose behind each.
#include <functional>

#include "core_fixture.h"

namespace ombrel::test {
namespace {

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
  // The frame that is taken, and as many poses, one of which lets it go.
  void HandOffWithPoses(int poses) {
    Background frame([this] { HandOffTaken(); });
    ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
    for (int i = 0; i < poses; ++i) ASSERT_TRUE(SendPose());
    ASSERT_TRUE(frame.Finishes());
  }
  // The frame under way has come to that call, waits for a pose, and goes with it.
  void ExpectWaitForAPose(Background& frame, const std::string& call) {
    ASSERT_TRUE(WaitForCall(call));
    EXPECT_TRUE(frame.StaysBlocked());
    ASSERT_TRUE(SendPose());
    EXPECT_TRUE(frame.Finishes());
  }
  void ExpectReleaseBy(const std::function<void()>& event) {
    Background frame([this] { HandOffTaken(); });
    ASSERT_TRUE(WaitForCall("AcquireOutput 1 16"));
    ASSERT_TRUE(frame.StaysBlocked());
    event();
    EXPECT_TRUE(frame.Finishes());
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
  ASSERT_NO_FATAL_FAILURE(HandOffWithPoses(3));
  // Two poses are left.
  core_->Frames().HandOffTexture(6);
  core_->Frames().HandOffTexture(7);
  Background last([this] { core_->Frames().HandOffTexture(8); });
  ExpectWaitForAPose(last, "CopyToOutput 8 1 16");
}

TEST_F(VirtualHandOffTest, IsReleasedByADrop) {
  ExpectReleaseBy([this] { companion_.Disconnect(); });
}

TEST_F(VirtualHandOffTest, IsReleasedWhenTheLinkStops) {
  ExpectReleaseBy([this] { core_->StopLink(); });
}

TEST_F(VirtualHandOffTest, CountsAnewForEachConnection) {
  ASSERT_NO_FATAL_FAILURE(HandOffWithPoses(5));
  companion_.Offer();
  companion_.Disconnect();
  ASSERT_TRUE(companion_.Accept());
  ASSERT_TRUE(WaitForCall("CreateOutputTextures", 3));
  renderer_->journal.Clear();
  Background again([this] { HandOffTaken(); });
  // The five poses were the last companion's.
  ExpectWaitForAPose(again, "CopyToOutput 5 0 16");
}

TEST_F(VirtualHandOffTest, ATextureThatIsHeldDropsTheFrameAndCountsNothing) {
  renderer_->canCopy = false;
  HandOffTaken();
  EXPECT_EQ(renderer_->journal.From(4 + 1), (Lines{"Sharing", "CopyToOutput 5 0 16"}));
  renderer_->canCopy = true;
  Background frame([this] { core_->Frames().HandOffTexture(6); });
  ExpectWaitForAPose(frame, "CopyToOutput 6 0 16");
}

TEST_F(VirtualHandOffTest, CopiesNothingIntoAnOutputThatCouldNotBeHad) {
  renderer_->canAcquireOutput = false;
  ASSERT_NO_FATAL_FAILURE(HandOffWithPoses(2));
  renderer_->journal.Clear();
  core_->Frames().HandOffTexture(6);
  EXPECT_EQ(Calls(), (Lines{"SkipCopy 6 1 16", "ReleaseOutput 1", "AcquireOutput 0 16"}));
}

TEST_F(VirtualHandOffTest, ClearsEachOutputWhenItIsFirstHadInAConnectionAndNeverAgain) {
  renderer_->canAcquireOutput = false;
  ASSERT_NO_FATAL_FAILURE(HandOffWithPoses(7));
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
