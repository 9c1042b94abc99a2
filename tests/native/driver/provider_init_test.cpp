// What Init asks the runtime for, and what it tells it.
#include <algorithm>
#include <optional>

#include "provider_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class InitTest : public ProviderTest {
 protected:
  // In the order in which the driver read them, all of its own section.
  Lines KeysRead() {
    Lines keys;
    for (const auto& entry : runtime_.Journal().Entries()) {
      if (!entry.call.starts_with("IVRSettings.")) continue;
      EXPECT_EQ(entry.arguments.at("section"), "driver_ombrel");
      keys.push_back(entry.call.substr(12) + " " + entry.arguments.at("key").get<std::string>());
    }
    return keys;
  }
};

TEST_F(InitTest, AsksForEachInterfaceOnceAndForInputsWhenTheyAreNeeded) {
  const Lines byInit{"IVRServerDriverHost_005", "IVRSettings_002",      "IVRProperties_001",
                     "IVRDriverLog_001",        "IVRDriverManager_001", "IVRResources_001"};
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime_.RequestedInterfaces(), byInit);
  for (std::uint32_t times = 0; times < 2; ++times) Device(0).Activate(0);
  EXPECT_EQ(runtime_.RequestedInterfaces().size(), byInit.size() + 1);
  EXPECT_EQ(runtime_.RequestedInterfaces().back(), "IVRDriverInput_001");
}

TEST_F(InitTest, EndsWithoutAnInterfaceAndMayBeTriedAgain) {
  runtime_.Withhold("IVRDriverManager_001");
  EXPECT_EQ(Init(), vr::VRInitError_Init_InterfaceNotFound);
  EXPECT_TRUE(Added().empty());
  EXPECT_TRUE(runtime_.Log().Lines().empty());
  provider_.Cleanup();
  runtime_.Provide("IVRDriverManager_001");
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(Added().size(), 2U);
  EXPECT_EQ(runtime_.Log().Lines().front(), "Ombrel process is running\n");
}

TEST_F(InitTest, GoesOnWithoutPropertiesAndInputs) {
  runtime_.Withhold("IVRProperties_001");
  runtime_.Withhold("IVRDriverInput_001");
  Start();
  provider_.RunFrame();
  EXPECT_EQ(PosesOf(0), 1U);
}

TEST_F(InitTest, AFrameBeforeItIsWithoutEffect) {
  provider_.RunFrame();
  EXPECT_TRUE(runtime_.Journal().Calls().empty());
}

TEST_F(InitTest, NeedsAContext) { EXPECT_EQ(provider_.Init(nullptr), vr::VRInitError_Init_InterfaceNotFound); }

TEST_F(InitTest, AnnouncesTheHeadsetAndThenTheBaseStation) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  ASSERT_EQ(Added().size(), 2U);
  EXPECT_EQ(Added()[0].serial, "serialNumber");
  EXPECT_EQ(Added()[0].deviceClass, vr::TrackedDeviceClass_HMD);
  EXPECT_EQ(Added()[1].serial, "0.1113");
  EXPECT_EQ(Added()[1].deviceClass, vr::TrackedDeviceClass_TrackingReference);
}

TEST_F(InitTest, DoesNotMindThatTheHeadsetIsRefused) {
  runtime_.Host().RefuseDevice("serialNumber");
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime_.Log().Lines().back(), "Fake sensor registered with result 1\n");
}

TEST_F(InitTest, TellsOfABaseStationThatIsRefused) {
  runtime_.Host().RefuseDevice("0.1113");
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime_.Log().Lines().back(), "Fake sensor registered with result 0\n");
}

TEST_F(InitTest, WhileThereIsAHeadsetAddsNothing) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  runtime_.Log().TakeNew();
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(Added().size(), 2U);
  EXPECT_TRUE(runtime_.Log().TakeNew().empty());
}

TEST_F(InitTest, ReadsEachSettingOnceAndInOrderAndNoneLater) {
  Start();
  provider_.RunFrame();
  EXPECT_THAT(KeysRead(), ElementsAre("GetBool fakeSensorEnabled", "GetInt32 hmdMode", "GetInt32 windowWidth",
                                      "GetInt32 windowHeight", "GetInt32 renderScale", "GetInt32 RotationOffsetXDeg",
                                      "GetInt32 RotationOffsetYDeg", "GetInt32 RotationOffsetZDeg"));
}

struct FakeSensorCase {
  std::optional<bool> stored;
  vr::EVRSettingsError error;
  bool isAdded;
};

class FakeSensorSettingTest : public ProviderTest, public testing::WithParamInterface<FakeSensorCase> {};

TEST_P(FakeSensorSettingTest, DecidesWhetherThereIsABaseStation) {
  if (GetParam().stored) Set("fakeSensorEnabled", *GetParam().stored);
  if (GetParam().error != vr::VRSettingsError_None) {
    runtime_.Settings().FailRead("driver_ombrel", "fakeSensorEnabled", GetParam().error);
  }
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(Added().size(), GetParam().isAdded ? 2U : 1U);
}

INSTANTIATE_TEST_SUITE_P(Every, FakeSensorSettingTest,
                         testing::Values(FakeSensorCase{{}, vr::VRSettingsError_None, true},
                                         FakeSensorCase{false, vr::VRSettingsError_None, false},
                                         FakeSensorCase{true, vr::VRSettingsError_None, true},
                                         FakeSensorCase{false, vr::VRSettingsError_IPCFailed, true}));

class ModeTest : public ProviderTest, public testing::WithParamInterface<int> {};

TEST_P(ModeTest, IsLoggedAndDecidesHowFramesComeIn) {
  Set("hmdMode", GetParam());
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime_.Log().Lines().at(1), "Preparing HMD, mode " + std::to_string(GetParam()) + "\n");
  const bool isVirtual = GetParam() == 1;
  EXPECT_EQ(Device(0).GetComponent("IVRVirtualDisplay_002") != nullptr, isVirtual);
  EXPECT_EQ(Device(0).GetComponent("IVRDriverDirectModeComponent_005") == nullptr, isVirtual);
}

INSTANTIATE_TEST_SUITE_P(Every, ModeTest, testing::Values(0, 1, 2, 7, -1));

}  // namespace
}  // namespace ombrel::test
