// IVRVirtualDisplay, and the headset that has it, called as MSVC lays them out: each method has an effect of its own.
#include <gmock/gmock.h>

#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class VirtualDisplaySlotsTest : public DriverTest {
 protected:
  void SetUp() override {
    Set("hmdMode", 1);
    ASSERT_EQ(Init(), vr::VRInitError_None);
    component = MsvcDeviceGetComponent(&Headset(), "IVRVirtualDisplay_002");
    ASSERT_NE(component, nullptr);
  }
  std::uint64_t Presents() {
    float seconds = -1.0F;
    std::uint64_t frames = 99;
    EXPECT_TRUE(MsvcVirtualGetTimeSinceLastVsync(component, &seconds, &frames));
    return frames;
  }

  void* component = nullptr;
};

TEST_F(VirtualDisplaySlotsTest, Present) {
  EXPECT_EQ(Presents(), 0U);
  MsvcVirtualPresent(component, 5);
  EXPECT_EQ(Presents(), 1U);
  EXPECT_EQ(runtime.Host().VsyncEvents(), 0U);
}

TEST_F(VirtualDisplaySlotsTest, WaitForPresent) {
  MsvcVirtualWaitForPresent(component);
  EXPECT_EQ(runtime.Host().VsyncEvents(), 1U);
  EXPECT_EQ(Presents(), 0U);
}

TEST_F(VirtualDisplaySlotsTest, GetTimeSinceLastVsync) {
  float before = -1.0F, after = -1.0F;
  std::uint64_t frames = 99;
  EXPECT_TRUE(MsvcVirtualGetTimeSinceLastVsync(component, &before, &frames));
  MsvcVirtualWaitForPresent(component);
  EXPECT_TRUE(MsvcVirtualGetTimeSinceLastVsync(component, &after, &frames));
  EXPECT_GE(after, 0.0F);
  EXPECT_LT(after, before) << "before the first wait it is the time since the counter began";
}

TEST_F(VirtualDisplaySlotsTest, HeadsetGetPose) {
  GuardedResult<vr::DriverPose_t> pose;
  MsvcDeviceGetPose(&Headset(), pose.Address());
  EXPECT_EQ(pose.Value().vecPosition[1], static_cast<double>(1.7F));
  EXPECT_TRUE(pose.IsUntouchedAround());
}

TEST_F(VirtualDisplaySlotsTest, HeadsetComputeDistortion) {
  GuardedResult<vr::DistortionCoordinates_t> point;
  MsvcDisplayComputeDistortion(MsvcDeviceGetComponent(&Headset(), "IVRDisplayComponent_002"), vr::Eye_Left, 0.25F,
                               0.875F, point.Address());
  EXPECT_EQ(point.Value().rfGreen[0], 0.25F);
  EXPECT_EQ(point.Value().rfGreen[1], 0.875F);
  EXPECT_TRUE(point.IsUntouchedAround());
}

}  // namespace
}  // namespace ombrel::test
