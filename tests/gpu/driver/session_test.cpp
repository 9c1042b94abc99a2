#include <future>

#include "direct_fixture.h"
#include "sharing/counters.h"

namespace ombrel::test {
namespace {

using testing::Each;
using testing::IsEmpty;

class SessionTest : public DirectTest {
 protected:
  // How long Cleanup takes, in milliseconds.
  double TimeCleanup() {
    const auto begin = std::chrono::steady_clock::now();
    Cleanup();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
  }
  // A present on another thread that has come as far as waiting for a texture.
  std::future<void> PresentAndWait(vr::SharedTextureHandle_t sync) {
    const auto asked = [this] { return calls.Asked(bench::DeviceCall::kAcquireSync); };
    const std::size_t before = asked();
    auto present = std::async(std::launch::async, [this, sync] { Direct().Present(sync); });
    EXPECT_TRUE(bench::WaitUntil([&] { return asked() > before; }, kPatience));
    return present;
  }
};

TEST_F(SessionTest, ACompanionThatConnectsTenSecondsBeforeActivationStillGetsFrames) {
  Init();
  Connect();
  for (int pose = 1; pose <= 20; ++pose) {
    ASSERT_TRUE(companion->Send(bench::EncodeQuaternionAndPosition({}, {static_cast<float>(pose), 0, 0})));
    companion->WaitUntilRead();
    Sleep(500);
  }
  EXPECT_THAT(calls.Of<TextureMade>(), IsEmpty());
  Activate();
  EXPECT_EQ(HeadsetPose().vecPosition[0], 20.0);
  SubmitLayer(MakeEye(kRed), MakeEye(kBlue));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty());
  EXPECT_TRUE(SendPose(42.0F));
}

TEST_F(SessionTest, ACompanionThatCameAndWentBeforeActivationDoesNoHarm) {
  Init();
  Connect();
  companion->ClosePipes();
  Activate();
  Connect();
  SubmitLayer(MakeEye(kRed), MakeEye(kBlue));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty());
}

TEST_F(SessionTest, CleanupEndsAHandOffThatWaitsForTheSyncTexture) {
  Start();
  const auto sync = MakeKeyed();
  ASSERT_TRUE(HandOver());
  ASSERT_TRUE(SendFrameRate(1));
  ASSERT_EQ(sync.keyedMutex->AcquireSync(0, 0), S_OK);
  auto present = PresentAndWait(sync.handle);
  EXPECT_LT(TimeCleanup(), 3000.0);
  EXPECT_EQ(present.wait_for(milliseconds(0)), std::future_status::ready);
}

TEST_F(SessionTest, CleanupEndsAHandOffThatWaitsForTheCompanion) {
  Start();
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  ASSERT_TRUE(SendFrameRate(1));
  ASSERT_EQ(companion->Acquire(0, 5000), S_OK);
  auto present = PresentAndWait(0);
  EXPECT_LT(TimeCleanup(), 3000.0);
  EXPECT_EQ(present.wait_for(milliseconds(0)), std::future_status::ready);
}

TEST_F(SessionTest, CleanupEndsAPacingWait) {
  Start();
  ASSERT_TRUE(SendFrameRate(1));
  Direct().PostPresent();
  auto wait = std::async(std::launch::async, [this] { Direct().PostPresent(); });
  EXPECT_LT(TimeCleanup(), 3000.0);
  EXPECT_EQ(wait.wait_for(milliseconds(0)), std::future_status::ready);
}

TEST_F(SessionTest, CleanupLeavesNothingOfDirect3D) {
  Start();
  const auto eye = MakeEye(kRed);
  SubmitLayer(eye, eye);
  ASSERT_TRUE(HandOver());
  Cleanup();
  const auto live = bench::ReadCounters(bench::DeviceGroup::kIntercepted);
  EXPECT_EQ(live.liveDevices, 0);
  EXPECT_EQ(live.liveTextures, 0);
  EXPECT_EQ(live.liveViews, 0);
  EXPECT_EQ(live.liveBuffers, 0);
  EXPECT_EQ(live.heldMutexes, 0);
}

TEST_F(SessionTest, ASessionAfterCleanupHasFramesAgain) {
  Start();
  ASSERT_TRUE(HandOver());
  Cleanup();
  companion = std::make_unique<Companion>();
  Start();
  SubmitLayer(MakeEye(kRed), MakeEye(kBlue));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty());
}

class FailingSessionTest : public SessionTest {
 protected:
  // What a runtime and a companion do, whatever comes of it.
  void LiveThrough() {
    const SwapSet set = CreateSwapSet();
    for (int frame = 0; frame < 3; ++frame) {
      SubmitLayer(set[0], set[1]);
      Direct().Present(set[2]);
    }
    Direct().DestroySwapTextureSet(set[0]);
    Direct().DestroyAllSwapTextureSets(1);
  }
};

TEST_F(FailingSessionTest, WithoutADeviceThereAreNoFramesAndNoHarm) {
  calls.Fail(bench::DeviceCall::kCreateDevice, E_FAIL);
  Start();
  EXPECT_THAT(CreateSwapSet(), Each(0u));
  LiveThrough();
  Direct().PostPresent();
  EXPECT_THAT(calls.All(), IsEmpty());
  EXPECT_TRUE(SendPose(3.0F));
  EXPECT_FALSE(companion->NextMessage(200));
}

TEST_F(FailingSessionTest, WithoutOutputTexturesPosesGoOn) {
  calls.Fail(bench::DeviceCall::kCreateTexture2D, DXGI_ERROR_DEVICE_REMOVED);
  Start();
  LiveThrough();
  EXPECT_EQ(OutputsReleased(), 0u);
  EXPECT_TRUE(SendPose(3.0F));
}

TEST_F(FailingSessionTest, AConnectionWithoutTexturesIsFollowedByOneWithFrames) {
  Start();
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  const auto asked = [this] { return calls.Asked(bench::DeviceCall::kCreateTexture2D); };
  const std::size_t before = asked();
  calls.Fail(bench::DeviceCall::kCreateTexture2D, E_OUTOFMEMORY);
  Reconnect();
  ASSERT_TRUE(bench::WaitUntil([&] { return asked() > before; }, kPatience));
  calls.Allow(bench::DeviceCall::kCreateTexture2D);
  Reconnect();
  SubmitLayer(MakeEye(kRed), MakeEye(kBlue));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {EyeMiddle(0, kRed), EyeMiddle(1, kBlue)}), IsEmpty());
}

TEST_F(FailingSessionTest, CallsThatFailInTheMiddleDoNoHarmAndFramesComeBack) {
  using bench::DeviceCall;
  Start();
  const auto eye = MakeEye(kGreen);
  for (const DeviceCall call : {DeviceCall::kCreateRenderTargetView, DeviceCall::kOpenSharedResource, DeviceCall::kMap,
                                DeviceCall::kAcquireSync, DeviceCall::kReleaseSync}) {
    calls.Fail(call, DXGI_ERROR_DEVICE_REMOVED);
    Reconnect();
    LiveThrough();
    EXPECT_TRUE(SendPose(static_cast<float>(call)));
    calls.Allow(call);
  }
  Reconnect();
  SubmitLayer(eye, eye);
  ASSERT_TRUE(HandOver());
  EXPECT_TRUE(companion->NextMessage(5000));
}

}  // namespace
}  // namespace ombrel::test
