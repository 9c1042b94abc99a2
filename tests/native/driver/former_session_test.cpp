// What the runtime still does with the devices of a session that is over: the address sanitizer is the judge.
#include "provider_fixture.h"

namespace ombrel::test {
namespace {

class FormerSessionTest : public ProviderTest {
 protected:
  static constexpr std::uint32_t kId = 7;

  // A session with a controller at x = 2, which is over.
  void SetUp() override {
    Connect();
    AddController(2.0F);
    provider_.Cleanup();
    companion_.Disconnect();
  }
  void AddController(float x) {
    companion::ControllerRecord record{.controllerId = kId};
    record.pose[3] = x;
    SendRecord(record);
    ActivateController();
    SendRecord(record);
  }
  // The headset goes with its session.
  [[nodiscard]] std::vector<vr::ITrackedDeviceServerDriver*> Former() {
    return {Added().at(1).driver, Added().at(2).driver};
  }
};

TEST_F(FormerSessionTest, ItsDevicesMayBeCalledInTheNext) {
  Connect();
  for (vr::ITrackedDeviceServerDriver* device : Former()) {
    char answer[8]{};
    static_cast<void>(PoseOf(*device));
    device->EnterStandby();
    EXPECT_EQ(device->GetComponent("IVRNothing_001"), nullptr);
    device->DebugRequest("what", answer, sizeof(answer));
    device->Deactivate();
    EXPECT_EQ(device->Activate(9), vr::VRInitError_None);
  }
  provider_.RunFrame();
  EXPECT_EQ(PoseOf(*Former().back()).vecPosition[0], 2.0);
}

TEST_F(FormerSessionTest, ARecordIsForTheControllerOfItsOwnSession) {
  Connect();
  AddController(6.0F);
  ASSERT_EQ(Added().size(), 6U) << "it is announced anew";
  EXPECT_EQ(PoseOf(*Added()[5].driver).vecPosition[0], 6.0);
  EXPECT_EQ(PoseOf(*Former().back()).vecPosition[0], 2.0);
}

TEST_F(FormerSessionTest, TheBaseStationOfTheSessionIsTheOneThatReportsItself) {
  Start();
  ASSERT_EQ(Former().front()->Activate(9), vr::VRInitError_None);
  const std::size_t former = PosesOf(9), own = PosesOf(kBaseStation);
  provider_.RunFrame();
  EXPECT_EQ(PosesOf(9), former);
  EXPECT_EQ(PosesOf(kBaseStation), own + 1);
}

TEST_F(FormerSessionTest, AVibrationOfItsControllerGoesNowhere) {
  runtime_.Host().PushHaptic(bench::FakeProperties::ContainerOf(kController), 1, 0.1F, 100.0F, 0.5F);
  provider_.RunFrame();
  EXPECT_EQ(runtime_.Host().QueuedEvents(), 0U);
  Connect();
  Fence();
  EXPECT_FALSE(companion_.in.HasData(0));
}

}  // namespace
}  // namespace ombrel::test
