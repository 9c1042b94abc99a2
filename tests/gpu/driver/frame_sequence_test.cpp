#include "companion/shared_block.h"
#include "direct_fixture.h"

namespace ombrel::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FrameSequenceTest : public DirectTest {
 protected:
  void SetUp() override { Start(); }
};

TEST_F(FrameSequenceTest, FramesAlternateBetweenTheOutputsWithTheirPosesBesideThem) {
  const std::array<bench::Rgba, 3> colours{kRed, kGreen, kBlue};
  for (int frame = 0; frame < 3; ++frame) {
    SubmitLayer(MakeEye(colours[static_cast<std::size_t>(frame)]), PoseNumber(frame + 1));
    ASSERT_TRUE(HandOver());
    if (frame == 0) TakeAnnouncement();
    const int output = frame % 2;
    ASSERT_EQ(companion->Acquire(output, 5000), S_OK);
    EXPECT_THAT(companion->Compare(output, {EyeMiddle(0, colours[static_cast<std::size_t>(frame)])}), IsEmpty());
    EXPECT_EQ(companion->Slot(output), SlotOfPose(frame + 1));
    ASSERT_EQ(companion->Release(output), S_OK);
  }
}

TEST_F(FrameSequenceTest, APoseIsInItsSlotWhenTheOutputIsGivenAway) {
  ASSERT_TRUE(HandOver());
  const bench::FrameSharingInfo info = TakeAnnouncement();
  bench::SharedBlock block;
  ASSERT_TRUE(block.Open(info.name));
  bench::PoseSlot seen{};
  calls.onRelease = [&](std::uint32_t handle) {
    if (handle == info.sharedHandles[1]) seen = block.ReadSlot(1);
  };
  SubmitLayer(MakeEye(kRed), PoseNumber(7));
  ASSERT_TRUE(HandOver());
  calls.onRelease = nullptr;
  EXPECT_EQ(seen, SlotOfPose(7));
}

TEST_F(FrameSequenceTest, ASlotStaysAsItIsWhileTheOtherIsWritten) {
  for (int frame = 0; frame < 2; ++frame) {
    SubmitLayer(MakeEye(kRed), PoseNumber(frame + 1));
    ASSERT_TRUE(HandOver());
  }
  TakeAnnouncement();
  EXPECT_EQ(companion->Slot(0), SlotOfPose(1));
  EXPECT_EQ(companion->Slot(1), SlotOfPose(2));
}

TEST_F(FrameSequenceTest, TheDriverHoldsTheOutputThatItDrawsNext) {
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_EQ(companion->Acquire(1, 0), static_cast<HRESULT>(WAIT_TIMEOUT));
  EXPECT_EQ(companion->Acquire(0, 0), S_OK);
  EXPECT_EQ(companion->Release(0), S_OK);
  ASSERT_TRUE(HandOver());
  EXPECT_EQ(companion->Acquire(0, 0), static_cast<HRESULT>(WAIT_TIMEOUT));
  EXPECT_EQ(companion->Acquire(1, 0), S_OK);
}

TEST_F(FrameSequenceTest, OutputsAreReleasedInTurnsAndTakenInTurns) {
  for (int frame = 0; frame < 4; ++frame) ASSERT_TRUE(HandOver());
  const auto announcement = TakeAnnouncement();
  const auto& outputs = announcement.sharedHandles;
  std::vector<std::uint32_t> acquired, released;
  for (const Acquired& call : calls.Of<Acquired>()) acquired.push_back(call.handle);
  for (const Released& call : calls.Of<Released>()) released.push_back(call.handle);
  EXPECT_THAT(acquired, ElementsAre(outputs[0], outputs[1], outputs[0], outputs[1], outputs[0]));
  EXPECT_THAT(released, ElementsAre(outputs[0], outputs[1], outputs[0], outputs[1]));
}

TEST_F(FrameSequenceTest, KeyZeroIsUsedThroughout) {
  const auto sync = MakeKeyed();
  for (int frame = 0; frame < 2; ++frame) ASSERT_TRUE(HandOver(sync.handle));
  for (const Acquired& call : calls.Of<Acquired>()) EXPECT_EQ(call.key, 0u);
  for (const Released& call : calls.Of<Released>()) EXPECT_EQ(call.key, 0u);
}

// Drawing, passing on, taking the other output, clearing it, giving the sync texture back.
TEST_F(FrameSequenceTest, AFrameGoesThroughItsStepsInOrder) {
  const auto sync = MakeKeyed();
  const auto eye = MakeEye(kRed);
  ASSERT_TRUE(HandOver());
  calls.Clear();
  SubmitLayer(eye, PoseNumber(1));
  ASSERT_TRUE(HandOver(sync.handle));
  std::string order;
  for (const RecordedCall& call : calls.All()) {
    if (const auto* acquired = std::get_if<Acquired>(&call)) order += acquired->handle == sync.handle ? "S" : "A";
    if (const auto* released = std::get_if<Released>(&call)) order += released->handle == sync.handle ? "s" : "r";
    if (std::holds_alternative<BlendBound>(call)) order += 'b';
    if (std::holds_alternative<Drawn>(call)) order += 'd';
    if (std::holds_alternative<Cleared>(call)) order += 'c';
  }
  EXPECT_EQ(order, "SbddrAcs");
}

TEST_F(FrameSequenceTest, AFirstFrameWithoutLayersIsBlack) {
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {{"all", 0, 0, 2 * kEyeWidth, kEyeHeight, kBlack}}), IsEmpty());
}

TEST_F(FrameSequenceTest, TheOutputThatWasTakenIsClearedToOpaqueBlack) {
  const auto eye = MakeEye(kWhite);
  SubmitLayer(eye, PoseNumber(1));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  const auto cleared = calls.Of<Cleared>();
  ASSERT_THAT(cleared, SizeIs(2));
  EXPECT_EQ(cleared[0].view, calls.Of<Drawn>()[0].target);  // when the connection was set up
  EXPECT_THAT(cleared[1].colour, ElementsAre(0.0F, 0.0F, 0.0F, 1.0F));
  EXPECT_NE(cleared[1].view, cleared[0].view);
  ASSERT_TRUE(HandOver());  // no layer is drawn over it
  EXPECT_THAT(companion->Look(1, {{"all", 0, 0, 2 * kEyeWidth, kEyeHeight, kBlack}}), IsEmpty());
}

TEST_F(FrameSequenceTest, AnOutputWithAnOldPictureIsClearedToo) {
  const auto eye = MakeEye(kWhite);
  for (int frame = 0; frame < 2; ++frame) {
    SubmitLayer(eye, PoseNumber(frame));
    ASSERT_TRUE(HandOver());
  }
  TakeAnnouncement();
  ASSERT_TRUE(HandOver());
  EXPECT_THAT(companion->Look(0, {{"all", 0, 0, 2 * kEyeWidth, kEyeHeight, kBlack}}), IsEmpty());
}

TEST_F(FrameSequenceTest, TheFirstLayersPoseIsTheFramesPose) {
  const auto eye = MakeEye(kRed);
  SubmitLayer(eye, PoseNumber(7));
  SubmitLayer(eye, PoseNumber(8));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_EQ(companion->Slot(0), SlotOfPose(7));
}

TEST_F(FrameSequenceTest, BeforeAnyLayerTheFramesPoseIsTheIdentity) {
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Slot(0), ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
}

TEST_F(FrameSequenceTest, AFrameWithoutLayersKeepsThePoseOfTheOneBefore) {
  SubmitLayer(MakeEye(kRed), PoseNumber(5));
  for (int frame = 0; frame < 2; ++frame) ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_EQ(companion->Slot(1), SlotOfPose(5));
}

TEST_F(FrameSequenceTest, TheOpaqueBlendIsBoundOncePerFrame) {
  ASSERT_TRUE(HandOver());
  calls.Clear();
  for (int frame = 0; frame < 2; ++frame) ASSERT_TRUE(HandOver());
  const auto bound = calls.Of<BlendBound>();
  ASSERT_THAT(bound, SizeIs(2));
  for (const BlendBound& blend : bound) {
    EXPECT_FALSE(blend.enabled);
    EXPECT_FALSE(blend.hasFactor);
    EXPECT_EQ(blend.sampleMask, 0xFFFFFFFFu);
  }
}

TEST_F(FrameSequenceTest, NoFrameMakesAnyObject) {
  const auto eye = MakeEye(kRed);
  ASSERT_TRUE(HandOver());
  calls.Clear();
  SubmitLayer(eye, PoseNumber(1));
  ASSERT_TRUE(HandOver());
  for (const RecordedCall& call : calls.All()) {
    EXPECT_FALSE(std::holds_alternative<TextureMade>(call) || std::holds_alternative<SourceViewMade>(call) ||
                 std::holds_alternative<TargetViewMade>(call) || std::holds_alternative<BufferMade>(call) ||
                 std::holds_alternative<BlendMade>(call) || std::holds_alternative<SamplerMade>(call));
  }
}

TEST_F(FrameSequenceTest, ACompanionThatKeepsAnOutputDoesNotStopTheFrames) {
  const auto eye = MakeEye(kGreen);
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  ASSERT_EQ(companion->Acquire(0, 5000), S_OK);
  for (int frame = 1; frame < 4; ++frame) {
    SubmitLayer(eye, PoseNumber(frame));
    ASSERT_TRUE(HandOver());
  }
  ASSERT_EQ(companion->Release(0), S_OK);
  EXPECT_THAT(companion->Look(1, {EyeMiddle(0, kGreen)}), IsEmpty());
}

TEST_F(FrameSequenceTest, TheAnnouncementHas76BytesAndTellsWhereTheFramesAre) {
  ASSERT_TRUE(HandOver());
  const auto message = companion->NextMessage(5000);
  ASSERT_TRUE(message && message->Is(bench::MessageType::FrameSharingInfo));
  ASSERT_THAT(message->payload, SizeIs(76));
  const auto info = bench::DecodeFrameSharingInfo(message->payload);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->processId, GetCurrentProcessId());
  EXPECT_THAT(info->name, SizeIs(58));
  EXPECT_FALSE(info->invertY);
  EXPECT_NE(info->sharedHandles[0], info->sharedHandles[1]);
  for (const std::uint32_t handle : info->sharedHandles) EXPECT_EQ(application.Describe(handle).MiscFlags, 0x100u);
  EXPECT_THAT(std::vector(message->payload.begin() + 73, message->payload.end()), Each(0));
}

TEST_F(FrameSequenceTest, TheAnnouncementIsMadeOnce) {
  for (int frame = 0; frame < 5; ++frame) ASSERT_TRUE(HandOver());
  EXPECT_TRUE(companion->NextMessage(5000));
  EXPECT_FALSE(companion->NextMessage(300));
}

TEST_F(FrameSequenceTest, NoAnnouncementIsMadeBeforeTheFirstFrame) {
  SubmitLayer(MakeEye(kRed), PoseNumber(1));
  EXPECT_FALSE(companion->NextMessage(300));
  ASSERT_TRUE(HandOver());
  EXPECT_TRUE(companion->NextMessage(5000));
}

// A first frame that is dropped shows that the announcement is on its way before the frame is looked at.
TEST_F(FrameSequenceTest, TheAnnouncementComesBeforeTheFirstFrame) {
  const auto sync = MakeKeyed();
  ASSERT_EQ(sync.keyedMutex->AcquireSync(0, 0), S_OK);
  const auto announced = [&] {
    Direct().Present(sync.handle);
    return companion->NextMessage(20).has_value();
  };
  EXPECT_TRUE(bench::WaitUntil(announced, kPatience));
  EXPECT_EQ(OutputsReleased(), 0u);
}

}  // namespace
}  // namespace ombrel::test
