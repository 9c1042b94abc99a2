// IVRDisplayComponent, called as MSVC lays it out: each method has an effect of its own.
#include <gmock/gmock.h>

#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

// A window of 3840 by 2160, so that no two numbers are alike.
class DisplaySlotsTest : public DriverTest {
 protected:
  void SetUp() override {
    Set("windowWidth", 2560);
    Set("windowHeight", 1440);
    Set("renderScale", 150);
    ASSERT_EQ(Init(), vr::VRInitError_None);
    display = MsvcDeviceGetComponent(&Headset(), "IVRDisplayComponent_002");
    ASSERT_NE(display, nullptr);
  }

  void* display = nullptr;
};

TEST_F(DisplaySlotsTest, GetWindowBounds) {
  std::int32_t x = 0, y = 0;
  std::uint32_t width = 0, height = 0;
  MsvcDisplayGetWindowBounds(display, &x, &y, &width, &height);
  EXPECT_EQ(x, -1);
  EXPECT_EQ(y, -1);
  EXPECT_EQ(width, 3840U);
  EXPECT_EQ(height, 2160U);
}

TEST_F(DisplaySlotsTest, IsDisplayOnDesktopAndIsDisplayRealDisplay) {
  EXPECT_FALSE(MsvcDisplayIsOnDesktop(display));
  EXPECT_FALSE(MsvcDisplayIsReal(display));
}

TEST_F(DisplaySlotsTest, GetRecommendedRenderTargetSize) {
  std::uint32_t width = 0, height = 0;
  MsvcDisplayGetRenderTargetSize(display, &width, &height);
  EXPECT_EQ(width, 1920U);
  EXPECT_EQ(height, 2160U);
}

TEST_F(DisplaySlotsTest, GetEyeOutputViewport) {
  std::uint32_t x = 9, y = 9, width = 9, height = 9;
  MsvcDisplayGetEyeViewport(display, vr::Eye_Right, &x, &y, &width, &height);
  EXPECT_EQ(x, 1920U);
  EXPECT_EQ(y, 0U);
  EXPECT_EQ(width, 1920U);
  EXPECT_EQ(height, 2160U);
}

TEST_F(DisplaySlotsTest, GetProjectionRaw) {
  float left = 0, right = 0, top = 0, bottom = 0;
  MsvcDisplayGetProjection(display, vr::Eye_Left, &left, &right, &top, &bottom);
  EXPECT_EQ(left, -1.0F);
  EXPECT_EQ(right, 1.0F);
  EXPECT_EQ(top, -1.0F);
  EXPECT_EQ(bottom, 1.0F);
}

TEST_F(DisplaySlotsTest, ComputeDistortion) {
  for (const std::int32_t eye : {vr::Eye_Left, vr::Eye_Right}) {
    GuardedResult<vr::DistortionCoordinates_t> point;
    MsvcDisplayComputeDistortion(display, eye, 0.25F, 0.875F, point.Address());
    const vr::DistortionCoordinates_t value = point.Value();
    for (const auto& channel : {value.rfRed, value.rfGreen, value.rfBlue}) {
      EXPECT_EQ(channel[0], 0.25F);
      EXPECT_EQ(channel[1], 0.875F);
    }
    EXPECT_TRUE(point.IsUntouchedAround());
  }
}

}  // namespace
}  // namespace ombrel::test
