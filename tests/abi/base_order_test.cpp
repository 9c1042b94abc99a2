// The order of the headset's bases: a pointer to its first one, moved by MSVC's rules, meets each of the others.
#include <gmock/gmock.h>

#include "msvc_side/calls.h"
#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class BaseOrderTest : public DriverTest {
 protected:
  void SetUp() override { InitAndActivateHeadset(); }
};

TEST_F(BaseOrderTest, DeviceComesFirst) {
  EXPECT_EQ(MsvcDeviceGetComponent(&Headset(), "ITrackedDeviceServerDriver_005"), &Headset());
}

TEST_F(BaseOrderTest, DisplayComesSecond) {
  void* display = MsvcDeviceGetComponent(&Headset(), "IVRDisplayComponent_002");
  EXPECT_EQ(display, MsvcHeadsetDisplayBase(&Headset()));
  std::uint32_t width = 0, height = 0;
  MsvcDisplayGetRenderTargetSize(MsvcHeadsetDisplayBase(&Headset()), &width, &height);
  EXPECT_EQ(width, 500U);
  EXPECT_EQ(height, 600U);
}

TEST_F(BaseOrderTest, TrackingListenerComesThird) {
  const std::size_t before = runtime.Poses().Count(0);
  MsvcHeadsetCallTrackingListener(&Headset());
  EXPECT_EQ(runtime.Poses().Count(0), before + 1);
}

TEST_F(BaseOrderTest, FramerateListenerComesFourth) {
  MsvcHeadsetCallFramerateListener(&Headset(), 72);
  EXPECT_EQ(LogLines().back(), "Updating headset fps, new value: 72.000000 \n");
}

}  // namespace
}  // namespace ombrel::test
