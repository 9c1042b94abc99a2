#include <future>
#include <stdexcept>

#include "driver_fixture.h"

namespace ombrel::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr milliseconds kStill{150};  // that long a call has to stay blocked to count as blocked

// A headset that gets finished frames.
class VirtualDisplayTest : public DriverTest {
 protected:
  VirtualDisplayTest() : DriverTest(1) {}
  void SetUp() override { Start(); }

  [[nodiscard]] vr::IVRVirtualDisplay& Display() const {
    void* const component = Component(vr::IVRVirtualDisplay_Version);
    if (component == nullptr) throw std::runtime_error("the headset has no virtual display");
    return *static_cast<vr::IVRVirtualDisplay*>(component);
  }
  void Present(std::uint64_t handle) {
    const vr::PresentInfo_t info{handle, vr::VSync_None, 0, 0.0};
    Display().Present(&info, sizeof(info));
  }
  RuntimeSide::Shared MakeFrame(std::uint8_t pattern) {
    auto frame = MakeKeyed(2 * kEyeWidth, kEyeHeight);
    application.Paint(frame, Pattern(pattern));
    return frame;
  }
  // Presents on another thread, again and again until a frame is handed over, which the last call then waits to have
  // answered. Empty if none was.
  std::future<void> StartFrame(const RuntimeSide::Shared& frame) {
    const std::size_t before = OutputsReleased();
    const auto handedOver = [this, before] { return OutputsReleased() > before; };
    auto present = std::async(std::launch::async, [this, handedOver, handle = frame.handle] {
      static_cast<void>(bench::WaitUntil([&] { return Present(handle), handedOver(); }, kPatience));
    });
    EXPECT_TRUE(bench::WaitUntil(handedOver, kPatience));
    return present;
  }
  [[nodiscard]] static bool IsBlocked(const std::future<void>& present) {
    return present.wait_for(kStill) == std::future_status::timeout;
  }
  [[nodiscard]] static bool Returns(const std::future<void>& present) {
    return present.wait_for(kPatience) == std::future_status::ready;
  }
  [[nodiscard]] std::uint64_t PresentCount() const {
    float seconds = -1.0F;
    std::uint64_t frames = 0;
    EXPECT_TRUE(Display().GetTimeSinceLastVsync(&seconds, &frames));
    return frames;
  }
  static Area All(std::uint8_t pattern) { return {"all", 0, 0, 2 * kEyeWidth, kEyeHeight, {}, pattern}; }
};

TEST_F(VirtualDisplayTest, TheComponentIsFoundInAnyLetterCase) {
  EXPECT_EQ(Component("ivrvirtualdisplay_002"), &Display());
  EXPECT_EQ(Component("IVRDriverDirectModeComponent_005"), nullptr);
}

TEST_F(VirtualDisplayTest, AFinishedFrameArrivesPixelForPixel) {
  auto present = StartFrame(MakeFrame(0x3C));
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {All(0x3C)}), IsEmpty());
  ASSERT_TRUE(SendPose(1.0F));
  EXPECT_TRUE(Returns(present));
}

TEST_F(VirtualDisplayTest, AFrameWaitsForAPoseAndAlternatesWithTheNext) {
  for (int frame = 0; frame < 4; ++frame) {
    const auto pattern = static_cast<std::uint8_t>(frame + 1);
    auto present = StartFrame(MakeFrame(pattern));
    if (frame == 0) TakeAnnouncement();
    EXPECT_TRUE(IsBlocked(present));
    EXPECT_THAT(companion->Look(frame % 2, {All(pattern)}), IsEmpty());
    EXPECT_EQ(companion->Slot(frame % 2), bench::PoseSlot{}) << "no pose is known of it";
    ASSERT_TRUE(SendPose(static_cast<float>(frame)));
    ASSERT_TRUE(Returns(present));
  }
}

TEST_F(VirtualDisplayTest, PosesThatAreAheadLetAsManyFramesThrough) {
  const auto frame = MakeFrame(1);
  auto first = StartFrame(frame);
  for (const float x : {1.0F, 2.0F, 3.0F}) ASSERT_TRUE(SendPose(x));
  ASSERT_TRUE(Returns(first));
  for (int number = 1; number < 3; ++number) {
    auto present = StartFrame(frame);
    ASSERT_TRUE(Returns(present)) << number;
  }
  auto last = StartFrame(frame);
  EXPECT_TRUE(IsBlocked(last));
  ASSERT_TRUE(SendPose(4.0F));
  EXPECT_TRUE(Returns(last));
}

TEST_F(VirtualDisplayTest, AFrameThatWaitsIsLetGoWhenTheCompanionGoes) {
  auto present = StartFrame(MakeFrame(1));
  ASSERT_TRUE(IsBlocked(present));
  companion->ClosePipes();
  EXPECT_TRUE(Returns(present));
}

TEST_F(VirtualDisplayTest, AFrameThatWaitsIsLetGoAtCleanup) {
  auto present = StartFrame(MakeFrame(1));
  ASSERT_TRUE(IsBlocked(present));
  const auto begin = std::chrono::steady_clock::now();
  Cleanup();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(3000));
  EXPECT_EQ(present.wait_for(milliseconds(0)), std::future_status::ready);
}

TEST_F(VirtualDisplayTest, PosesGoOnWhileAFrameWaits) {
  auto present = StartFrame(MakeFrame(1));
  for (const float x : {1.0F, 2.0F, 3.0F}) EXPECT_TRUE(SendPose(x));
  EXPECT_TRUE(Returns(present));
}

TEST_F(VirtualDisplayTest, AConnectionStartsTheCountAnew) {
  const auto frame = MakeFrame(9);
  auto before = StartFrame(frame);
  for (const float x : {1.0F, 2.0F, 3.0F}) ASSERT_TRUE(SendPose(x));
  ASSERT_TRUE(Returns(before));
  TakeAnnouncement();
  Reconnect();
  auto present = StartFrame(frame);
  TakeAnnouncement();
  EXPECT_TRUE(IsBlocked(present));
  EXPECT_THAT(companion->Look(0, {All(9)}), IsEmpty());
  ASSERT_TRUE(SendPose(4.0F));
  EXPECT_TRUE(Returns(present));
}

TEST_F(VirtualDisplayTest, AFrameThatIsHeldElsewhereIsDroppedAndCountedAsPresented) {
  const auto frame = MakeFrame(1);
  auto first = StartFrame(frame);
  ASSERT_TRUE(SendPose(1.0F));
  ASSERT_TRUE(Returns(first));
  const auto released = OutputsReleased();
  const auto presented = PresentCount();
  ASSERT_EQ(frame.keyedMutex->AcquireSync(0, 0), S_OK);
  calls.Clear();
  Present(frame.handle);
  EXPECT_EQ(PresentCount(), presented + 1);
  ASSERT_THAT(calls.Of<Acquired>(), SizeIs(1));
  EXPECT_EQ(calls.Of<Acquired>()[0].timeoutMs, 16u);
  EXPECT_THAT(calls.Of<Released>(), IsEmpty());
  EXPECT_THAT(calls.Of<Copied>(), IsEmpty());
  EXPECT_EQ(released, 1u);
}

// Nothing is copied, but the output goes to the companion as it is.
TEST_F(VirtualDisplayTest, AFrameThatCannotBeOpenedIsHandedOverAsItIsAndCountsAsOne) {
  auto first = StartFrame(MakeFrame(1));
  for (const float x : {1.0F, 2.0F}) ASSERT_TRUE(SendPose(x));
  ASSERT_TRUE(Returns(first));
  const auto presented = PresentCount();
  calls.Clear();
  Present(0x7777);
  EXPECT_THAT(calls.Of<Copied>(), IsEmpty());
  EXPECT_EQ(OutputsReleased(), 1u);
  EXPECT_EQ(PresentCount(), presented + 1);
  // It has answered the second pose, and no other.
  auto next = StartFrame(MakeFrame(2));
  EXPECT_TRUE(IsBlocked(next));
  ASSERT_TRUE(SendPose(3.0F));
  EXPECT_TRUE(Returns(next));
}

TEST_F(VirtualDisplayTest, OutputsAreBlackBeforeTheirFirstPicture) {
  for (int frame = 0; frame < 2; ++frame) {
    auto present = StartFrame({.texture = {}, .keyedMutex = {}, .handle = 0x7777});
    if (frame == 0) TakeAnnouncement();
    EXPECT_THAT(companion->Look(frame, {{"all", 0, 0, 2 * kEyeWidth, kEyeHeight, kBlack}}), IsEmpty());
    ASSERT_TRUE(SendPose(static_cast<float>(frame)));
    ASSERT_TRUE(Returns(present));
  }
  EXPECT_THAT(calls.Of<Copied>(), IsEmpty());
  EXPECT_GE(PresentCount(), 2u);
}

TEST_F(VirtualDisplayTest, OutputsAreClearedOnceInAConnection) {
  const auto frame = MakeFrame(1);
  for (int number = 0; number < 4; ++number) {
    auto present = StartFrame(frame);
    ASSERT_TRUE(SendPose(static_cast<float>(number)));
    ASSERT_TRUE(Returns(present));
  }
  EXPECT_THAT(calls.Of<Cleared>(), SizeIs(2));
}

TEST_F(VirtualDisplayTest, NothingIsCopiedIntoAnOutputThatTheCompanionKeeps) {
  const auto frame = MakeFrame(1);
  auto first = StartFrame(frame);
  TakeAnnouncement();
  ASSERT_EQ(companion->Acquire(0, 5000), S_OK);
  for (const float x : {1.0F, 2.0F, 3.0F}) ASSERT_TRUE(SendPose(x));
  ASSERT_TRUE(Returns(first));
  Present(frame.handle);  // output 1, and output 0 cannot be had then
  calls.Clear();
  Present(frame.handle);
  EXPECT_THAT(calls.Of<Copied>(), IsEmpty());
}

TEST_F(VirtualDisplayTest, AFrameGoesThroughItsStepsInOrder) {
  const auto frame = MakeFrame(1);
  auto first = StartFrame(frame);
  for (const float x : {1.0F, 2.0F}) ASSERT_TRUE(SendPose(x));
  ASSERT_TRUE(Returns(first));
  calls.Clear();
  Present(frame.handle);
  std::string order;
  for (const RecordedCall& call : calls.All()) {
    if (const auto* acquired = std::get_if<Acquired>(&call)) order += acquired->handle == frame.handle ? "F" : "A";
    if (const auto* released = std::get_if<Released>(&call)) order += released->handle == frame.handle ? "f" : "r";
    if (std::holds_alternative<Copied>(call)) order += 'c';
    if (std::holds_alternative<Drawn>(call) || std::holds_alternative<Cleared>(call)) order += '!';
  }
  EXPECT_EQ(order, "FcfrA");
}

TEST_F(VirtualDisplayTest, WithoutALinkAPresentReturnsAndIsCounted) {
  companion->ClosePipes();
  ASSERT_TRUE(companion->WaitForDisconnection());
  const auto frame = MakeFrame(1);
  ASSERT_TRUE(bench::WaitUntil(
      [&] {
        calls.Clear();
        Present(frame.handle);
        return calls.All().empty();
      },
      kPatience));
  const auto presented = PresentCount();
  Present(frame.handle);
  EXPECT_EQ(PresentCount(), presented + 1);
}

TEST_F(VirtualDisplayTest, TimeSinceVsyncIsToldBeforeThereWasOne) {
  float seconds = -1.0F;
  std::uint64_t frames = 99;
  EXPECT_TRUE(Display().GetTimeSinceLastVsync(&seconds, &frames));
  EXPECT_GT(seconds, 0.0F);
  EXPECT_EQ(frames, 0u);
}

TEST_F(VirtualDisplayTest, EveryWaitTellsTheRuntimeOfAVsync) {
  for (int wait = 0; wait < 3; ++wait) Display().WaitForPresent();
  const auto events = runtime.Journal().EntriesOf("IVRServerDriverHost.VsyncEvent");
  ASSERT_THAT(events, SizeIs(3));
  for (const auto& event : events) EXPECT_EQ(event.arguments.at("offset"), 0.0);
}

TEST_F(VirtualDisplayTest, TimeSinceVsyncStartsAnewWithEachWait) {
  float before = 0.0F, after = 0.0F;
  std::uint64_t frames = 0;
  Display().GetTimeSinceLastVsync(&before, &frames);
  Display().WaitForPresent();
  Display().GetTimeSinceLastVsync(&after, &frames);
  EXPECT_LT(after, before);
}

}  // namespace
}  // namespace ombrel::test
