// Frames of layers, from the runtime's calls to what the companion sees. What happens in which case is the native tests'
// (link, render), what the renderer draws is render_test's: here the whole library is shown to put them together.
#include <set>

#include "companion/shared_block.h"
#include "direct_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class DirectFramesTest : public DirectTest {
 protected:
  void SetUp() override { Start(); }
};

TEST_F(DirectFramesTest, LinearColoursArriveGammaEncodedInTheirHalves) {
  const bench::Rgba left{13, 55, 128, 255}, right{200, 99, 2, 255};
  SubmitLayer(MakeEye(left), MakeEye(right));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {EyeMiddle(0, Encoded(left), 1), EyeMiddle(1, Encoded(right), 1)}), IsEmpty());
}

// Red and green above, blue and white below.
bench::Rgba Quarters(int x, int y) {
  const bool right = x >= 16, below = y >= 12;
  return below ? (right ? kWhite : kBlue) : (right ? kGreen : kRed);
}

TEST_F(DirectFramesTest, ThePictureStandsUpright) {
  const auto eye = MakeEye(Quarters);
  SubmitLayer(eye, eye);
  ASSERT_TRUE(HandOver());
  EXPECT_FALSE(TakeAnnouncement().invertY);
  EXPECT_THAT(companion->Look(0, {{"upper left", 520, 20, 200, 250, kRed},
                                  {"upper right", 780, 20, 200, 250, kGreen},
                                  {"lower right", 780, 330, 200, 250, kWhite},
                                  {"lower left", 520, 330, 200, 250, kBlue}}),
              IsEmpty());
}

TEST_F(DirectFramesTest, AlternateBetweenTheOutputsWithTheirPosesBesideThem) {
  const std::array<bench::Rgba, 3> colours{kRed, kGreen, kBlue};
  for (int frame = 0; frame < 3; ++frame) {
    const bench::Rgba& colour = colours[static_cast<std::size_t>(frame)];
    SubmitLayer(MakeEye(colour), PoseNumber(frame + 1));
    ASSERT_TRUE(HandOver());
    if (frame == 0) TakeAnnouncement();
    const int output = frame % 2;
    EXPECT_THAT(companion->Look(output, {EyeMiddle(0, colour), EyeMiddle(1, colour)}), IsEmpty());
    EXPECT_EQ(companion->Slot(output), SlotOfPose(frame + 1));
    EXPECT_EQ(companion->Acquire(1 - output, 0), static_cast<HRESULT>(WAIT_TIMEOUT)) << "the driver draws into it next";
  }
  EXPECT_EQ(companion->Slot(1), SlotOfPose(2)) << "it stays as the other one is written";
}

TEST_F(DirectFramesTest, HaveTheirPoseInItsSlotWhenTheOutputIsGivenAway) {
  ASSERT_TRUE(HandOver());
  const companion::FrameSharingInfo info = TakeAnnouncement();
  companion::SharedBlock block;
  ASSERT_TRUE(block.Open(info.name));
  companion::PoseSlot seen{};
  calls.onRelease = [&](std::uint32_t handle) {
    if (handle == info.sharedHandles[1]) seen = block.ReadSlot(1);
  };
  SubmitLayer(MakeEye(kRed), PoseNumber(7));
  ASSERT_TRUE(HandOver());
  calls.onRelease = nullptr;
  EXPECT_EQ(seen, SlotOfPose(7));
}

TEST_F(DirectFramesTest, HaveTheIdentityForAPoseUntilThereIsALayerAndThenKeepTheLastOne) {
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Slot(0), ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
  const auto eye = MakeEye(kRed);
  SubmitLayer(eye, PoseNumber(7));
  SubmitLayer(eye, PoseNumber(8));
  ASSERT_TRUE(HandOver());
  EXPECT_EQ(companion->Slot(1), SlotOfPose(7)) << "that of the first layer";
  ASSERT_TRUE(HandOver());
  EXPECT_EQ(companion->Slot(0), SlotOfPose(7));
}

TEST_F(DirectFramesTest, ThatAreDroppedLeaveNothingBehind) {
  const auto sync = MakeKeyed();
  const auto green = MakeEye(kGreen);
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  calls.Clear();
  ASSERT_EQ(sync.keyedMutex->AcquireSync(0, 0), S_OK);
  SubmitLayer(MakeEye(kRed), PoseNumber(2));
  Direct().Present(sync.handle);
  EXPECT_THAT(calls.Of<Drawn>(), IsEmpty());
  EXPECT_EQ(companion->Slot(1), companion::PoseSlot{});
  ASSERT_EQ(sync.keyedMutex->ReleaseSync(0), S_OK);
  SubmitLayer(green, PoseNumber(3));
  ASSERT_TRUE(HandOver(sync.handle));
  EXPECT_THAT(calls.Of<Drawn>(), SizeIs(2));
  EXPECT_THAT(companion->Look(1, {EyeMiddle(0, kGreen), EyeMiddle(1, kGreen)}), IsEmpty());
  EXPECT_EQ(companion->Slot(1), SlotOfPose(3));
}

TEST_F(DirectFramesTest, AskForTheDevicesHealthOnceEach) {
  const auto asked = [this] { return calls.Asked(bench::DeviceCall::kGetDeviceRemovedReason); };
  ASSERT_TRUE(HandOver());
  const std::size_t before = asked();
  for (int frame = 0; frame < 5; ++frame) ASSERT_TRUE(HandOver());
  EXPECT_EQ(asked(), before + 5);
}

TEST_F(DirectFramesTest, StartInOutputZeroOfNewTexturesWithEveryConnection) {
  const auto red = MakeEye(kRed), blue = MakeEye(kBlue);
  std::set<std::uint32_t> handles;
  for (int connection = 1; connection <= 3; ++connection) {
    SubmitLayer(red, blue, {kWholeTexture, kWholeTexture}, PoseNumber(connection));
    ASSERT_TRUE(HandOver());
    for (const std::uint32_t handle : TakeAnnouncement().sharedHandles) handles.insert(handle);
    EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty()) << connection;
    EXPECT_EQ(companion->Slot(0), SlotOfPose(connection));
    Reconnect();
  }
  EXPECT_THAT(handles, SizeIs(6));
}

using EarlyCompanionTest = DirectTest;

TEST_F(EarlyCompanionTest, ThatCameAndWentBeforeActivationDoesNoHarm) {
  Init();
  const auto red = MakeEye(kRed), blue = MakeEye(kBlue);
  SubmitLayer(red, PoseNumber(3));
  Direct().Present(0);
  Connect();
  companion->ClosePipes();
  Activate();
  Connect();
  SubmitLayer(red, blue);
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty());
  EXPECT_EQ(companion->Slot(0), SlotOfPose(3)) << "that of the first layer that nobody has seen";
}

}  // namespace
}  // namespace ombrel::test
