#include "direct_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kTimedOut = static_cast<HRESULT>(WAIT_TIMEOUT);
constexpr auto kAbandoned = static_cast<HRESULT>(WAIT_ABANDONED);

// A sync texture, and a session whose first frame has been handed over.
class DroppedFrameTest : public DirectTest {
 protected:
  void SetUp() override {
    Start();
    sync = MakeKeyed();
    eye = MakeEye(kGreen);
    ASSERT_TRUE(HandOver());
    TakeAnnouncement();
    calls.Clear();
  }
  void Hold() { ASSERT_EQ(sync.keyedMutex->AcquireSync(0, 0), S_OK); }
  void LetGo() { ASSERT_EQ(sync.keyedMutex->ReleaseSync(0), S_OK); }

  RuntimeSide::Shared sync;
  vr::SharedTextureHandle_t eye = 0;
};

TEST_F(DroppedFrameTest, NothingIsDrawnOrPassedOn) {
  Hold();
  SubmitLayer(eye, PoseNumber(2));
  Direct().Present(sync.handle);
  EXPECT_THAT(calls.Of<Drawn>(), IsEmpty());
  EXPECT_THAT(calls.Of<Released>(), IsEmpty());
  EXPECT_THAT(calls.Of<BlendBound>(), IsEmpty());
  const auto acquired = calls.Of<Acquired>();
  ASSERT_THAT(acquired, SizeIs(1));
  EXPECT_EQ(acquired[0].handle, sync.handle);
  EXPECT_EQ(acquired[0].result, kTimedOut);
}

TEST_F(DroppedFrameTest, ItsLayersAreForgotten) {
  Hold();
  SubmitLayer(eye, PoseNumber(2));
  Direct().Present(sync.handle);
  LetGo();
  ASSERT_TRUE(HandOver(sync.handle));
  EXPECT_THAT(calls.Of<Drawn>(), IsEmpty());
}

TEST_F(DroppedFrameTest, ItsPoseIsNotWritten) {
  Hold();
  SubmitLayer(eye, PoseNumber(2));
  Direct().Present(sync.handle);
  EXPECT_EQ(companion->Slot(1), bench::PoseSlot{});
}

TEST_F(DroppedFrameTest, LaterFramesAreWholeAndInTurn) {
  Hold();
  SubmitLayer(MakeEye(kRed), PoseNumber(2));
  Direct().Present(sync.handle);
  LetGo();
  SubmitLayer(eye, PoseNumber(3));
  ASSERT_TRUE(HandOver(sync.handle));
  EXPECT_THAT(companion->Look(1, {EyeMiddle(0, kGreen), EyeMiddle(1, kGreen)}), IsEmpty());
  EXPECT_EQ(companion->Slot(1), SlotOfPose(3));
}

TEST_F(DroppedFrameTest, AnAbandonedSyncTextureDropsTheFrameToo) {
  Companion second;
  second.Attach({sync.handle});
  ASSERT_EQ(second.Acquire(0, 5000), S_OK);
  second.Kill();
  SubmitLayer(eye, PoseNumber(2));
  Direct().Present(sync.handle);
  EXPECT_EQ(calls.Of<Acquired>().at(0).result, kAbandoned);
  EXPECT_THAT(calls.Of<Drawn>(), IsEmpty());
  ASSERT_TRUE(HandOver());  // without a sync texture, and without the layer
  EXPECT_THAT(calls.Of<Drawn>(), IsEmpty());
}

TEST_F(DroppedFrameTest, ASyncTextureThatIsFreeIsHeldForTheFrameAndGivenBack) {
  SubmitLayer(eye, PoseNumber(2));
  ASSERT_TRUE(HandOver(sync.handle));
  EXPECT_THAT(calls.Of<Drawn>(), SizeIs(2));
  EXPECT_EQ(sync.keyedMutex->AcquireSync(0, 0), S_OK);
}

TEST_F(DroppedFrameTest, ASyncTextureWithoutKeyedMutexDropsNothing) {
  const auto plain = application.MakeShared(4, 4, kFormat, D3D11_RESOURCE_MISC_SHARED);
  SubmitLayer(eye, PoseNumber(2));
  Direct().Present(plain.handle);
  EXPECT_THAT(calls.Of<Drawn>(), SizeIs(2));
  EXPECT_EQ(OutputsReleased(), 1u);
}

TEST_F(DroppedFrameTest, ASyncTextureThatCannotBeOpenedDropsNothing) {
  SubmitLayer(eye, PoseNumber(2));
  Direct().Present(0x7777);
  EXPECT_THAT(calls.Of<Drawn>(), SizeIs(2));
  EXPECT_EQ(OutputsReleased(), 1u);
}

TEST_F(DroppedFrameTest, WithoutASyncTextureNoneIsOpened) {
  ASSERT_TRUE(HandOver(0));
  EXPECT_THAT(calls.Of<Opened>(), IsEmpty());
}

TEST_F(DroppedFrameTest, ATimeOutIs16MillisecondsUntilARateIsKnown) {
  ASSERT_TRUE(HandOver(sync.handle));
  const auto acquired = calls.Of<Acquired>();
  ASSERT_THAT(acquired, SizeIs(2));
  EXPECT_EQ(acquired[0].timeoutMs, 16u);  // sync texture
  EXPECT_EQ(acquired[1].timeoutMs, 16u);  // next output
}

struct Rate {
  std::uint32_t framesPerSecond;
  DWORD timeoutMs;
};

// No rate keeps a caller for more than a second.
TEST_F(DroppedFrameTest, ATimeOutIsTheWholeMillisecondsOfTheFramePeriod) {
  for (const Rate& rate : {Rate{90, 11}, Rate{72, 13}, Rate{60, 16}, Rate{120, 8}, Rate{1, 1000}, Rate{0, 1000},
                           Rate{2000, 0}, Rate{0xFFFFFFFF, 0}}) {
    SCOPED_TRACE(rate.framesPerSecond);
    ASSERT_TRUE(SendFrameRate(rate.framesPerSecond));
    calls.Clear();
    ASSERT_TRUE(HandOver(sync.handle));
    EXPECT_THAT(calls.Of<Acquired>(), SizeIs(2));
    for (const Acquired& acquired : calls.Of<Acquired>()) EXPECT_EQ(acquired.timeoutMs, rate.timeoutMs);
  }
}

}  // namespace
}  // namespace ombrel::test
