#include <gmock/gmock.h>

#include "runtime/msvc_calls.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

struct Viewport {
  std::uint32_t x = 99, y = 99, width = 99, height = 99;
  bool operator==(const Viewport&) const = default;
};

// A window of 3840 by 2160.
class DisplayTest : public DriverTest {
 protected:
  void SetUp() override {
    Set("windowWidth", 2560);
    Set("windowHeight", 1440);
    Set("renderScale", 150);
    ASSERT_EQ(Init(), vr::VRInitError_None);
  }
  Viewport ViewportOf(vr::EVREye eye) {
    Viewport viewport;
    Display().GetEyeOutputViewport(eye, &viewport.x, &viewport.y, &viewport.width, &viewport.height);
    return viewport;
  }
};

TEST_F(DisplayTest, EyesLieSideBySide) {
  EXPECT_EQ(ViewportOf(vr::Eye_Left), (Viewport{0, 0, 1920, 2160}));
  EXPECT_EQ(ViewportOf(vr::Eye_Right), (Viewport{1920, 0, 1920, 2160}));
}

TEST_F(DisplayTest, IsNoDisplayOfTheDesktop) {
  EXPECT_FALSE(Display().IsDisplayOnDesktop());
  EXPECT_FALSE(Display().IsDisplayRealDisplay());
}

TEST_F(DisplayTest, BothEyesSeeNinetyDegreesEachWay) {
  for (const vr::EVREye eye : {vr::Eye_Left, vr::Eye_Right}) {
    float left = 0, right = 0, top = 0, bottom = 0;
    Display().GetProjectionRaw(eye, &left, &right, &top, &bottom);
    EXPECT_EQ(left, -1.0F);
    EXPECT_EQ(right, 1.0F);
    EXPECT_EQ(top, -1.0F);
    EXPECT_EQ(bottom, 1.0F);
  }
}

TEST_F(DisplayTest, NothingIsDistorted) {
  for (const vr::EVREye eye : {vr::Eye_Left, vr::Eye_Right}) {
    const vr::DistortionCoordinates_t point = bench::CallComputeDistortion(&Display(), eye, 0.25F, 0.875F);
    for (const auto& channel : {point.rfRed, point.rfGreen, point.rfBlue}) {
      EXPECT_EQ(channel[0], 0.25F);
      EXPECT_EQ(channel[1], 0.875F);
    }
  }
}

TEST_F(DisplayTest, IsFoundUnderAnyLetterCase) {
  vr::IVRDisplayComponent* const display = &Display();
  EXPECT_EQ(Headset().GetComponent("ivrdisplaycomponent_002"), display);
  EXPECT_EQ(Headset().GetComponent("IVRDISPLAYCOMPONENT_002"), display);
}

}  // namespace
}  // namespace ombrel::test
