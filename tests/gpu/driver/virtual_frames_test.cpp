// Finished frames, from the runtime's call to what the companion sees; the cases are the native tests'.
#include <future>

#include "driver_fixture.h"

namespace ombrel::test {
namespace {

using testing::IsEmpty;

class VirtualFramesTest : public DriverTest {
 protected:
  VirtualFramesTest() : DriverTest(1) {}
  void SetUp() override { Start(); }

  // Presents on another thread, again and again until a frame is handed over, which the last call then waits to have
  // answered.
  std::future<void> StartFrame(std::uint8_t pattern) {
    const auto frame = MakeKeyed(2 * kEyeWidth, kEyeHeight);
    application.Paint(frame, Pattern(pattern));
    const auto handedOver = [this, before = OutputsReleased()] { return OutputsReleased() > before; };
    auto& display = *static_cast<vr::IVRVirtualDisplay*>(Component(vr::IVRVirtualDisplay_Version));
    auto present = std::async(std::launch::async, [&display, handedOver, frame] {
      const vr::PresentInfo_t info{frame.handle, vr::VSync_None, 0, 0.0};
      static_cast<void>(
          bench::WaitUntil([&] { return display.Present(&info, sizeof(info)), handedOver(); }, kPatience));
    });
    EXPECT_TRUE(bench::WaitUntil(handedOver, kPatience));
    return present;
  }
};

TEST_F(VirtualFramesTest, ArrivePixelForPixelInTurnsAndWaitForAPoseEach) {
  for (int frame = 0; frame < 4; ++frame) {
    const auto pattern = static_cast<std::uint8_t>(frame + 1);
    auto present = StartFrame(pattern);
    if (frame == 0) TakeAnnouncement();
    EXPECT_EQ(present.wait_for(milliseconds(150)), std::future_status::timeout) << "no pose has come";
    EXPECT_THAT(companion->Look(frame % 2, {{"all", 0, 0, 2 * kEyeWidth, kEyeHeight, {}, pattern}}), IsEmpty());
    EXPECT_EQ(companion->Slot(frame % 2), companion::PoseSlot{}) << "no pose is known of it";
    ASSERT_TRUE(SendPose(static_cast<float>(frame)));
    ASSERT_EQ(present.wait_for(kPatience), std::future_status::ready);
  }
}

}  // namespace
}  // namespace ombrel::test
