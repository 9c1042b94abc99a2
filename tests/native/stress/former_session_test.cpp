// What the runtime still does with the devices of a session that is over: the address sanitizer is the judge.
#include <gtest/gtest.h>

#include <mutex>
#include <utility>
#include <vector>

#include "context/driver_context.h"
#include "server_driver_ombrel.h"
#include "support/fake_companion.h"
#include "support/hooked_runtime.h"
#include "support/wait.h"
#include "tell_tale.h"

namespace ombrel::test {
namespace {

class FormerSessionTest : public testing::Test {
 protected:
  using Devices = std::vector<vr::ITrackedDeviceServerDriver*>;
  static constexpr std::uint32_t kController = 2;  // index

  FormerSessionTest() {
    host_.isFakeSensorEnabled = true;
    host_.onDeviceAdded = [this](auto, auto* device) {
      const std::lock_guard guard(mutex_);
      added_.push_back(device);
    };
  }
  ~FormerSessionTest() override {
    provider_.Cleanup();
    Context().Clear();
  }

  // From Init to Cleanup, with a base station and a controller. Its devices but the headset, which goes with it.
  [[nodiscard]] Devices LiveThroughASession() {
    StartSession();
    Devices devices = Added();
    provider_.Cleanup();
    companion_.Disconnect();
    devices.erase(devices.begin());
    return devices;
  }
  void StartSession() {
    const std::size_t before = Added().size();
    ASSERT_EQ(provider_.Init(&host_), vr::VRInitError_None);
    ASSERT_EQ(Added().size(), before + 2);
    for (std::uint32_t index : {0U, 1U}) Added()[before + index]->Activate(index);
    ASSERT_TRUE(companion_.Connect());
    ASSERT_TRUE(companion_.Send(10, ControllerUpdate(7, 1)));
    ASSERT_TRUE(WaitUntil([&] { return Added().size() == before + 3; }));
    Added().back()->Activate(kController);
    ASSERT_TRUE(companion_.Send(10, ControllerUpdate(7, 2)));
    ASSERT_TRUE(WaitUntil([&] { return XOf(*Added().back()) == 2.0; }));
  }
  [[nodiscard]] static double XOf(vr::ITrackedDeviceServerDriver& device) {
    vr::DriverPose_t pose{};
    device.GetPose(&pose);
    return pose.vecPosition[0];
  }
  [[nodiscard]] Devices Added() const {
    const std::lock_guard guard(mutex_);
    return added_;
  }

  HookedRuntime host_;
  FakeCompanion companion_;
  CServerDriver_Ombrel provider_;
  mutable std::mutex mutex_;
  Devices added_;
};

TEST_F(FormerSessionTest, ItsDevicesMayBeCalledInTheNext) {
  const Devices former = LiveThroughASession();
  ASSERT_EQ(former.size(), 2U);
  StartSession();
  for (vr::ITrackedDeviceServerDriver* device : former) {
    char answer[8]{};
    static_cast<void>(XOf(*device));
    device->EnterStandby();
    EXPECT_EQ(device->GetComponent("IVRNothing_001"), nullptr);
    device->DebugRequest("what", answer, sizeof(answer));
    device->Deactivate();
    EXPECT_EQ(device->Activate(9), vr::VRInitError_None);
  }
  provider_.RunFrame();
  EXPECT_EQ(XOf(*former.back()), 2.0);
}

TEST_F(FormerSessionTest, AVibrationOfItsControllerGoesNowhere) {
  const Devices former = LiveThroughASession();
  bool isDue = true;
  host_.nextEvent = [&isDue](vr::VREvent_t* event) {
    event->eventType = vr::VREvent_Input_HapticVibration;
    event->data.hapticVibration.containerHandle = HookedRuntime::ContainerOf(kController);
    event->data.hapticVibration.fDurationSeconds = 0.003F;
    return std::exchange(isDue, false);
  };
  provider_.RunFrame();
  EXPECT_FALSE(isDue);
}

}  // namespace
}  // namespace ombrel::test
