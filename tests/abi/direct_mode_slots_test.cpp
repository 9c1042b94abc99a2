// IVRDriverDirectModeComponent, called as MSVC lays it out, as far as its methods show anything without a companion
// that takes frames. Present and SubmitLayer only must not show what another slot would.
#include <gmock/gmock.h>

#include <array>
#include <chrono>

#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class DirectModeSlotsTest : public DriverTest {
 protected:
  void SetUp() override {
    InitAndActivateHeadset();
    direct = MsvcDeviceGetComponent(&Headset(), "IVRDriverDirectModeComponent_005");
    ASSERT_NE(direct, nullptr);
    NewLogLines();
  }

  void* direct = nullptr;
};

TEST_F(DirectModeSlotsTest, CreateSwapTextureSet) {
  std::uint64_t handles[3] = {1, 2, 3};
  MsvcDirectCreateSet(direct, 77, 640, 480, 28, 1, &handles);
  EXPECT_THAT(NewLogLines(), ElementsAre("Create swap requested, w: 640, h: 480, format: 28 samples: 1 \n"));
}

TEST_F(DirectModeSlotsTest, DestroySwapTextureSet) {
  MsvcDirectDestroySet(direct, 4711);
  EXPECT_THAT(NewLogLines(), ElementsAre("Destroy set: 4711\n"));
}

TEST_F(DirectModeSlotsTest, GetNextSwapTextureSetIndex) {
  std::uint32_t indices[2] = {2, 0};
  MsvcDirectGetNextIndex(direct, &indices);
  EXPECT_THAT(indices, ElementsAre(0U, 1U));
}

TEST_F(DirectModeSlotsTest, PostPresentWaitsForTheRestOfAFrame) {
  MsvcDirectPostPresent(direct);
  const auto begin = std::chrono::steady_clock::now();
  for (int frame = 0; frame < 6; ++frame) MsvcDirectPostPresent(direct);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(80)) << "six frames of 16.7 ms";
}

TEST_F(DirectModeSlotsTest, PresentAndSubmitLayerDoNotWaitAndSayNothing) {
  const float pose[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
  const auto begin = std::chrono::steady_clock::now();
  for (int frame = 0; frame < 30; ++frame) {
    MsvcDirectSubmitLayer(direct, 1, 2, &pose);
    MsvcDirectPresent(direct, 0);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(400)) << "30 pacing waits take 500 ms";
  MsvcDirectDestroyAllSets(direct, 77);
  EXPECT_TRUE(NewLogLines().empty());
}

TEST_F(DirectModeSlotsTest, GetFrameTimingWritesNothingBack) {
  GuardedResult<vr::DriverDirectMode_FrameTiming> timing;
  const auto before = timing;
  MsvcDirectGetFrameTiming(direct, timing.Address());
  EXPECT_EQ(std::memcmp(&timing, &before, sizeof(timing)), 0);
}

}  // namespace
}  // namespace ombrel::test
