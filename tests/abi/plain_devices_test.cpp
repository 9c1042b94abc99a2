// The test of the tests: devices that are built wrong are found wrong by the same calls that find the driver right.
#include <gmock/gmock.h>
#include <openvr_driver.h>

#include "idle_driver/idle_driver.h"
#include "msvc_side/calls.h"
#include "msvc_support.h"
#include "plain_devices.h"

namespace ombrel::test {
namespace {

constexpr double kX = 4.5;

using Room = std::array<std::uint8_t, kPlainDeviceRoom>;

TEST(PlainDeviceTest, PoseOfAPlainMinGwBuildNeverArrivesAndTheDeviceIsOverwritten) {
  alignas(16) Room room{};
  void* device = MakePlainDevice(room.data(), kX);
  const Room before = room;
  GuardedResult<vr::DriverPose_t> pose;
  MsvcDeviceGetPose(device, pose.Address());
  EXPECT_NE(pose.Value().vecPosition[0], kX);
  EXPECT_NE(room, before);
}

TEST(PlainDeviceTest, DistortionOfAPlainMinGwBuildNeverArrivesAndTheDisplayIsOverwritten) {
  alignas(16) Room room{};
  void* display = MakePlainDisplay(room.data());
  const Room before = room;
  GuardedResult<vr::DistortionCoordinates_t> point;
  MsvcDisplayComputeDistortion(display, 0, 0.25F, 0.5F, point.Address());
  EXPECT_NE(point.Value().rfRed[0], 0.25F);
  EXPECT_NE(room, before);
}

// Against the header that MinGW builds of the driver use.
TEST(PlainDeviceTest, PoseOfAHelpedMinGwBuildArrives) {
  IdleDevice device;
  device.givenPose.vecPosition[0] = kX;
  GuardedResult<vr::DriverPose_t> pose;
  MsvcDeviceGetPose(static_cast<vr::ITrackedDeviceServerDriver*>(&device), pose.Address());
  EXPECT_EQ(pose.Value().vecPosition[0], kX);
  EXPECT_TRUE(pose.IsUntouchedAround());
}

TEST(PlainDeviceTest, StrayWritesAreSeen) {
  GuardedResult<vr::DriverPose_t> pose;
  EXPECT_TRUE(pose.IsUntouchedAround());
  static_cast<std::uint8_t*>(pose.Address())[sizeof(vr::DriverPose_t)] = 0;
  EXPECT_FALSE(pose.IsUntouchedAround());
}

}  // namespace
}  // namespace ombrel::test
