// The headset's display component.
#include "hmd_fixture.h"

namespace ombrel::test {
namespace {

class HeadsetDisplayTest : public HeadsetTest {
 protected:
  void SetUp() override {
    Set("windowWidth", 2560);
    Set("windowHeight", 1440);
    Set("renderScale", 150);
    Make();
  }
};

TEST_F(HeadsetDisplayTest, HasAWindowThatFollowsTheScaledPicture) {
  std::int32_t x = 0, y = 0;
  std::uint32_t width = 0, height = 0;
  headset_->GetWindowBounds(&x, &y, &width, &height);
  EXPECT_EQ(x, -1);
  EXPECT_EQ(y, -1);
  EXPECT_EQ(width, 3840U);
  EXPECT_EQ(height, 2160U);
}

TEST_F(HeadsetDisplayTest, RecommendsOneEyesSize) {
  std::uint32_t width = 0, height = 0;
  headset_->GetRecommendedRenderTargetSize(&width, &height);
  EXPECT_EQ(width, 1920U);
  EXPECT_EQ(height, 2160U);
}

TEST_F(HeadsetDisplayTest, PutsTheEyesSideBySide) {
  for (const auto& [eye, expectedX] : {std::pair{vr::Eye_Left, 0U}, std::pair{vr::Eye_Right, 1920U}}) {
    std::uint32_t x = 9, y = 9, width = 9, height = 9;
    headset_->GetEyeOutputViewport(eye, &x, &y, &width, &height);
    EXPECT_EQ(x, expectedX);
    EXPECT_EQ(y, 0U);
    EXPECT_EQ(width, 1920U);
    EXPECT_EQ(height, 2160U);
  }
}

TEST_F(HeadsetDisplayTest, SeesASquareOf90Degrees) {
  for (const vr::EVREye eye : {vr::Eye_Left, vr::Eye_Right}) {
    float left = 0, right = 0, top = 0, bottom = 0;
    headset_->GetProjectionRaw(eye, &left, &right, &top, &bottom);
    EXPECT_EQ(left, -1.0F);
    EXPECT_EQ(right, 1.0F);
    EXPECT_EQ(top, -1.0F);
    EXPECT_EQ(bottom, 1.0F);
  }
}

TEST_F(HeadsetDisplayTest, DistortsNothing) {
  vr::DistortionCoordinates_t result{};
  EXPECT_EQ(headset_->ComputeDistortion(&result, vr::Eye_Right, 0.25F, 0.75F), &result);
  for (const float* colour : {result.rfRed, result.rfGreen, result.rfBlue}) {
    EXPECT_EQ(colour[0], 0.25F);
    EXPECT_EQ(colour[1], 0.75F);
  }
}

TEST_F(HeadsetDisplayTest, IsNoRealDisplayAndNotOnTheDesktop) {
  EXPECT_FALSE(headset_->IsDisplayOnDesktop());
  EXPECT_FALSE(headset_->IsDisplayRealDisplay());
}

}  // namespace
}  // namespace ombrel::test
