// Every line that the driver writes from Init to the activation of its devices, byte for byte.
#include <gmock/gmock.h>

#include "support/driver_test.h"
#include "support/process_list_script.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class LogTest : public DriverTest {};

TEST_F(LogTest, WholeStartUpAndActivation) {
  Set("windowWidth", 2560);
  Set("windowHeight", 1440);
  Set("renderScale", 150);
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Headset().Activate(0);
  FakeSensor().Activate(1);
  EXPECT_THAT(LogLines(), ElementsAre("Ombrel process is running\n",                               //
                                      "Preparing HMD, mode 0\n",                                   //
                                      "Using settings values\n",                                   //
                                      "driver_ombrel: Serial Number: 0.8\n",                       //
                                      "driver_ombrel: Model Number: Ombrel\n",                     //
                                      "driver_ombrel: Window: -1 -1 3840 2160\n",                  //
                                      "driver_ombrel: Render Target: 1920 2160\n",                 //
                                      "driver_ombrel: Seconds from Vsync to Photons: 0.005000\n",  //
                                      "driver_ombrel: Display Frequency: 60.000000\n",             //
                                      "driver_ombrel: IPD: 0.065000\n",                            //
                                      "Creating Direct driver component \n",                       //
                                      "Fake sensor registered with result 1\n",                    //
                                      "HMD activated with id 0 \n",                                //
                                      "Activate fake sensor 1 \n"));
}

TEST_F(LogTest, RefusedBaseStationIsToldOf) {
  runtime.Host().RefuseDevice("0.1113");
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(LogLines().back(), "Fake sensor registered with result 0\n");
}

TEST_F(LogTest, StandbyCallsAreToldOf) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  NewLogLines();
  EXPECT_TRUE(Provider().ShouldBlockStandbyMode());
  Provider().EnterStandby();
  Provider().LeaveStandby();
  EXPECT_THAT(NewLogLines(),
              ElementsAre("ShouldBlockStandby Server Tracked device \n", "Enter standby Server tracked device \n",
                          "Leave standby Server tracked device \n"));
}

TEST_F(LogTest, DeactivationIsToldOf) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  NewLogLines();
  FakeSensor().Deactivate();
  Headset().Deactivate();
  EXPECT_THAT(NewLogLines(), ElementsAre("Fake sensor driver deactivated: Ombrel fake sensor \n",  //
                                         "Driver deactivated: Ombrel \n"));
}

TEST_F(LogTest, NothingIsWrittenBeforeInit) {
  EXPECT_TRUE(Provider().ShouldBlockStandbyMode());
  Provider().EnterStandby();
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(LogTest, NothingIsWrittenAfterCleanup) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Provider().Cleanup();
  NewLogLines();
  EXPECT_TRUE(Provider().ShouldBlockStandbyMode());
  Provider().EnterStandby();
  FakeSensor().Deactivate();
  EXPECT_TRUE(NewLogLines().empty());
}

TEST_F(LogTest, SinkOfAFailedInitIsKeptUntilCleanup) {
  bench::FakeRuntime other;
  {
    const ProcessListScript noCompanion(module.Handle(), {});
    ASSERT_EQ(InitAsItIs(), 108);
  }
  EnsureCompanionProcess();
  ASSERT_EQ(Provider().Init(&other), vr::VRInitError_None);
  EXPECT_TRUE(other.Log().Lines().empty());
  EXPECT_THAT(LogLines(), testing::Contains("Ombrel process is running\n"));
  Unload();
}

class ModeTest : public LogTest, public ::testing::WithParamInterface<int> {};

TEST_P(ModeTest, IsLoggedAndGivesADirectModeHeadset) {
  Set("hmdMode", GetParam());
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(LogLines().at(1), "Preparing HMD, mode " + std::to_string(GetParam()) + "\n");
  EXPECT_NE(Headset().GetComponent("IVRDriverDirectModeComponent_005"), nullptr);
  EXPECT_EQ(Headset().GetComponent("IVRVirtualDisplay_002"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(, ModeTest, testing::Values(0, 2, 7, -1));

TEST_F(LogTest, ModeOneGivesAVirtualDisplay) {
  Set("hmdMode", 1);
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(LogLines().at(1), "Preparing HMD, mode 1\n");
  EXPECT_NE(Headset().GetComponent("IVRVirtualDisplay_002"), nullptr);
  EXPECT_EQ(Headset().GetComponent("IVRDriverDirectModeComponent_005"), nullptr);
}

}  // namespace
}  // namespace ombrel::test
