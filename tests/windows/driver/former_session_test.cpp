// Devices that the runtime was told of in one session, and may still call in the next.
#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "controller_fixture.h"
#include "runtime/wait.h"

namespace ombrel::test {
namespace {

// Takes memory that was freed and writes to it, so that whoever still uses it comes to grief. The driver has the same
// heap as this program.
void SpoilFreedMemory() {
  std::vector<void*> blocks;
  for (std::size_t size = 16; size <= 2048; size += 16) {
    for (int i = 0; i < 12; ++i) {
      void* const block = std::malloc(size);
      if (block != nullptr) std::memset(block, 0xEE, size);
      blocks.push_back(block);
    }
  }
  for (void* const block : blocks) std::free(block);
}

class FormerSessionTest : public ControllerFixture {
 protected:
  static constexpr std::uint32_t kSensorIndex = 5;

  // A session with a base station and two controllers, one of which is activated, ends and another one begins.
  void SetUp() override {
    ASSERT_TRUE(server.Open());
    ASSERT_EQ(Init(), vr::VRInitError_None);
    ASSERT_EQ(Headset().Activate(0), vr::VRInitError_None);
    ASSERT_TRUE(server.WaitForConnection(kTimeoutMs));
    sensor_ = &FakeSensor();
    ASSERT_EQ(sensor_->Activate(kSensorIndex), vr::VRInitError_None);
    Announce(8);
    inactive_ = runtime.Host().Added().back().driver;
    active_ = &AddActive(7);
    SendRecord(RecordAt(4.0F));
    Provider().Cleanup();
  }
  void StartAgain() {
    const std::uint32_t connections = server.Connections();
    ASSERT_EQ(Init(), vr::VRInitError_None);
    const auto added = runtime.Host().Added();
    ASSERT_EQ(added.size(), 6U) << "another headset and another base station";
    ASSERT_EQ(added[4].driver->Activate(0), vr::VRInitError_None);
    newSensor_ = added[5].driver;
    ASSERT_TRUE(bench::WaitUntil([&] { return server.Connections() > connections && server.Connected(); },
                                 std::chrono::milliseconds(kTimeoutMs)));
    SpoilFreedMemory();
  }
  static bench::ControllerRecord RecordAt(float x) {
    bench::ControllerRecord record;
    record.controllerId = 7;
    record.pose[3] = x;
    return record;
  }
  [[nodiscard]] std::array<vr::ITrackedDeviceServerDriver*, 3> Former() const { return {sensor_, inactive_, active_}; }

  vr::ITrackedDeviceServerDriver* sensor_ = nullptr;
  vr::ITrackedDeviceServerDriver* inactive_ = nullptr;
  vr::ITrackedDeviceServerDriver* active_ = nullptr;
  vr::ITrackedDeviceServerDriver* newSensor_ = nullptr;
};

TEST_F(FormerSessionTest, DevicesStillTellTheirPose) {
  StartAgain();
  EXPECT_EQ(PoseOf(*sensor_).vecPosition[2], 3.0);
  EXPECT_EQ(PoseOf(*sensor_).result, vr::TrackingResult_Running_OK);
  EXPECT_EQ(PoseOf(*inactive_).qRotation.w, 1.0);
  EXPECT_EQ(PoseOf(*active_).vecPosition[0], 4.0);
}

TEST_F(FormerSessionTest, DevicesMayBeCalledInAnyWay) {
  StartAgain();
  for (vr::ITrackedDeviceServerDriver* device : Former()) {
    std::array<char, 8> answer{'?'};
    device->EnterStandby();
    EXPECT_EQ(device->GetComponent("IVRNothing_001"), nullptr);
    device->DebugRequest("what", answer.data(), answer.size());
    device->Deactivate();
    EXPECT_EQ(device->Activate(9), vr::VRInitError_None);
    device->Deactivate();
  }
  Provider().RunFrame();
  Fence();
}

TEST_F(FormerSessionTest, ARecordIsForTheControllerOfItsOwnSession) {
  StartAgain();
  Announce(7);
  ASSERT_EQ(runtime.Host().Added().size(), 7U) << "it is announced anew";
  vr::ITrackedDeviceServerDriver& controller = Activate(2);
  SendRecord(RecordAt(6.0F));
  EXPECT_EQ(PoseOf(controller).vecPosition[0], 6.0);
  EXPECT_EQ(PoseOf(*active_).vecPosition[0], 4.0);
}

TEST_F(FormerSessionTest, TheBaseStationOfTheSessionIsTheOneThatReportsItself) {
  StartAgain();
  ASSERT_NE(newSensor_, sensor_);
  ASSERT_EQ(newSensor_->Activate(6), vr::VRInitError_None);
  const std::size_t former = runtime.Poses().Count(kSensorIndex), own = runtime.Poses().Count(6);
  Provider().RunFrame();
  EXPECT_EQ(runtime.Poses().Count(kSensorIndex), former);
  EXPECT_EQ(runtime.Poses().Count(6), own + 1);
}

TEST_F(FormerSessionTest, AVibrationBetweenTheSessionsGoesNowhere) {
  SpoilFreedMemory();
  runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(kIndex), 1, 0.1F, 100.0F, 0.5F);
  Provider().RunFrame();
  StartAgain();
  EXPECT_FALSE(server.Next(0).has_value());
}

}  // namespace
}  // namespace ombrel::test
