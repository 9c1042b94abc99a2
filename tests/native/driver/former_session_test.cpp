// What the runtime still does with the devices of a session that is over: the address sanitizer is the judge.
#include "provider_fixture.h"

namespace ombrel::test {
namespace {

class FormerSessionTest : public ProviderTest {
 protected:
  // From Init to Cleanup. Its devices but the headset, which goes with it.
  [[nodiscard]] Devices LiveThroughASession() {
    StartSession();
    Devices devices = Added();
    provider_.Cleanup();
    companion_.Disconnect();
    devices.erase(devices.begin());
    return devices;
  }
};

TEST_F(FormerSessionTest, ItsDevicesMayBeCalledInTheNext) {
  const Devices former = LiveThroughASession();
  ASSERT_EQ(former.size(), 2U);
  StartSession();
  for (vr::ITrackedDeviceServerDriver* device : former) {
    char answer[8]{};
    static_cast<void>(PoseOf(*device));
    device->EnterStandby();
    EXPECT_EQ(device->GetComponent("IVRNothing_001"), nullptr);
    device->DebugRequest("what", answer, sizeof(answer));
    device->Deactivate();
    EXPECT_EQ(device->Activate(9), vr::VRInitError_None);
  }
  provider_.RunFrame();
  EXPECT_EQ(PoseOf(*former.back()).vecPosition[0], 2.0);
}

TEST_F(FormerSessionTest, AVibrationOfItsControllerGoesNowhere) {
  const Devices former = LiveThroughASession();
  RunFrameWithEventsOfController({{vr::VREvent_Input_HapticVibration, 0.003F}});
}

}  // namespace
}  // namespace ombrel::test
