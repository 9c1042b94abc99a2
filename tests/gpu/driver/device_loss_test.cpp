#include "direct_fixture.h"

namespace ombrel::test {
namespace {

using testing::IsEmpty;

class DeviceLossTest : public DirectTest {
 protected:
  void SetUp() override {
    Start();
    ASSERT_TRUE(HandOver());
    TakeAnnouncement();
  }
  // Until the companion is connected again.
  void LoseDevice() {
    calls.Fail(bench::DeviceCall::kGetDeviceRemovedReason, DXGI_ERROR_DEVICE_REMOVED);
    const auto isKnown = [this] {
      Direct().Present(0);
      return runtime.Log().Contains("Graphics device lost, reason: -2005270523\n");
    };
    ASSERT_TRUE(bench::WaitUntil(isKnown, kPatience));
    calls.Allow(bench::DeviceCall::kGetDeviceRemovedReason);
    ASSERT_TRUE(companion->WaitForDisconnection());
    Reconnect();
  }
};

TEST_F(DeviceLossTest, IsAskedForOnceAFrame) {
  const std::size_t before = calls.Asked(bench::DeviceCall::kGetDeviceRemovedReason);
  for (int frame = 0; frame < 5; ++frame) ASSERT_TRUE(HandOver());
  EXPECT_EQ(calls.Asked(bench::DeviceCall::kGetDeviceRemovedReason), before + 5);
}

TEST_F(DeviceLossTest, FramesAreBlackUntilTheRuntimeHasNewSwapSets) {
  const auto before = MakeEye(kGreen);
  LoseDevice();
  EXPECT_TRUE(runtime.Log().Contains("Graphics device made anew\n"));
  SubmitLayer(before, PoseNumber(1));
  ASSERT_TRUE(HandOver());
  TakeAnnouncement();
  EXPECT_THAT(companion->Look(0, {{"all", 0, 0, 2 * kEyeWidth, kEyeHeight, kBlack}}), IsEmpty());
  EXPECT_EQ(companion->Slot(0), SlotOfPose(1));
  SubmitLayer(MakeEye(kRed), PoseNumber(2));
  ASSERT_TRUE(HandOver());
  EXPECT_THAT(companion->Look(1, {EyeMiddle(0, kRed), EyeMiddle(1, kRed)}), IsEmpty());
}

}  // namespace
}  // namespace ombrel::test
