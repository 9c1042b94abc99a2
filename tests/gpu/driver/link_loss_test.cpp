#include <set>

#include "direct_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using LinkLossTest = DirectTest;

std::vector<const void*> ViewsOf(const std::vector<Drawn>& draws) {
  std::vector<const void*> views;
  for (const Drawn& drawn : draws) views.push_back(drawn.view);
  return views;
}

TEST_F(LinkLossTest, LayersFromBeforeTheLinkAreAllDrawnInItsFirstFrame) {
  Init();
  Activate();
  const auto red = MakeEye(kRed), green = MakeEye(kGreen), blue = MakeEye(kBlue);
  const int first = 3;
  SubmitLayer(red, PoseNumber(first));
  Direct().Present(0);
  SubmitLayer(green, blue);
  Direct().Present(0);
  EXPECT_THAT(calls.Of<Drawn>(), IsEmpty());
  Connect();
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  const auto views = ViewsOf(calls.Of<Drawn>());
  ASSERT_THAT(views, SizeIs(4));
  EXPECT_EQ(views[0], views[1]);
  EXPECT_EQ(std::set(views.begin(), views.end()).size(), 3u);
  EXPECT_EQ(companion->Slot(0), SlotOfPose(first));
  EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kGreen), EyeMiddle(1, kBlue)}), IsEmpty());
}

TEST_F(LinkLossTest, LayersFromWhileTheLinkWasDownAreAllDrawnInTheFirstFrameAfter) {
  Start();
  const auto eye = MakeEye(kRed);
  ASSERT_TRUE(HandOver());
  companion->ClosePipes();
  ASSERT_TRUE(WaitForLinkDown());
  for (int layer = 0; layer < 3; ++layer) {
    SubmitLayer(eye, PoseNumber(layer + 1));
    Direct().Present(0);
  }
  Connect();
  calls.Clear();
  ASSERT_TRUE(HandOver());
  EXPECT_THAT(calls.Of<Drawn>(), SizeIs(6));
  ASSERT_TRUE(HandOver());
  EXPECT_THAT(calls.Of<Drawn>(), SizeIs(6));  // and then they are gone
}

TEST_F(LinkLossTest, WhileTheLinkIsDownAPresentTouchesNothing) {
  Start();
  const auto sync = MakeKeyed();
  ASSERT_TRUE(HandOver());
  companion->ClosePipes();
  ASSERT_TRUE(WaitForLinkDown());
  calls.Clear();
  SubmitLayer(MakeEye(kRed), PoseNumber(1));
  const auto made = calls.All().size();
  for (int frame = 0; frame < 3; ++frame) Direct().Present(sync.handle);
  EXPECT_EQ(calls.All().size(), made);
}

TEST_F(LinkLossTest, EveryConnectionBringsNewTexturesAnAnnouncementAndFrames) {
  Start();
  const auto red = MakeEye(kRed), blue = MakeEye(kBlue);
  std::set<std::uint32_t> handles;
  for (int connection = 1; connection <= 5; ++connection) {
    SubmitLayer(red, blue, {kWholeTexture, kWholeTexture}, PoseNumber(connection));
    ASSERT_TRUE(HandOver());
    const auto info = TakeAnnouncement();
    handles.insert(info.sharedHandles[0]);
    handles.insert(info.sharedHandles[1]);
    EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty()) << connection;
    EXPECT_EQ(companion->Slot(0), SlotOfPose(connection));
    ASSERT_TRUE(HandOver());
    EXPECT_FALSE(companion->NextMessage(100)) << connection;
    Reconnect();
  }
  EXPECT_THAT(handles, SizeIs(10));
}

TEST_F(LinkLossTest, TheFirstFrameAfterAReconnectIsInOutputZero) {
  Start();
  for (int frame = 0; frame < 3; ++frame) ASSERT_TRUE(HandOver());  // output 1 is next
  TakeAnnouncement();
  Reconnect();
  calls.Clear();
  ASSERT_TRUE(HandOver());
  EXPECT_EQ(calls.Of<Released>()[0].handle, TakeAnnouncement().sharedHandles[0]);
}

TEST_F(LinkLossTest, TexturesOfAnEarlierConnectionAreLetGo) {
  Start();
  ASSERT_TRUE(HandOver());
  const auto before = TakeAnnouncement();
  companion = std::make_unique<Companion>();  // so that nobody keeps them
  Connect();
  ASSERT_TRUE(HandOver());
  EXPECT_FALSE(application.CanOpen(before.sharedHandles[0]));
  EXPECT_FALSE(application.CanOpen(before.sharedHandles[1]));
}

TEST_F(LinkLossTest, ACompanionThatDiedHoldingAnOutputIsFollowedByOneThatGetsFrames) {
  Start();
  const auto eye = MakeEye(kGreen);
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  ASSERT_EQ(companion->Acquire(0, 5000), S_OK);
  companion->Kill();
  for (int frame = 0; frame < 3; ++frame) Direct().Present(0);
  companion = std::make_unique<Companion>();
  Connect();
  for (int frame = 0; frame < 3; ++frame) {
    SubmitLayer(eye, PoseNumber(frame + 1));
    ASSERT_TRUE(HandOver());
    if (frame == 0) TakeAnnouncement();
    EXPECT_THAT(companion->Look(frame % 2, {EyeMiddle(0, kGreen)}), IsEmpty());
    EXPECT_EQ(companion->Slot(frame % 2), SlotOfPose(frame + 1));
  }
}

TEST_F(LinkLossTest, ADeadCompanionsHoldIsNotTakenForAnOutput) {
  Start();
  ASSERT_TRUE(HandOver());
  const auto handle = TakeAnnouncement().sharedHandles[0];
  Companion second;
  second.Attach({handle});
  ASSERT_EQ(second.Acquire(0, 5000), S_OK);
  second.Kill();
  calls.Clear();
  ASSERT_TRUE(HandOver());  // passes output 1 on and wants output 0
  const auto acquired = calls.Of<Acquired>();
  ASSERT_THAT(acquired, SizeIs(1));
  EXPECT_EQ(acquired[0].handle, handle);
  EXPECT_EQ(acquired[0].result, static_cast<HRESULT>(WAIT_ABANDONED));
  EXPECT_TRUE(HandOver());
}

}  // namespace
}  // namespace ombrel::test
