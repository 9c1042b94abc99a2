// What a headset is when it has been made.
#include "hmd_fixture.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

Lines ConfigurationLines(const std::string& window, const std::string& target) {
  return {"driver_ombrel: Serial Number: 0.8\n",
          "driver_ombrel: Model Number: Ombrel\n",
          "driver_ombrel: Window: -1 -1 " + window + "\n",
          "driver_ombrel: Render Target: " + target + "\n",
          "driver_ombrel: Seconds from Vsync to Photons: 0.005000\n",
          "driver_ombrel: Display Frequency: 60.000000\n",
          "driver_ombrel: IPD: 0.065000\n"};
}

TEST_F(HeadsetTest, LogsItsConfiguration) {
  Set("windowWidth", 2560);
  Set("windowHeight", 1440);
  Set("renderScale", 150);
  Make();
  Lines expected{"Using settings values\n"};
  for (const std::string& line : ConfigurationLines("3840 2160", "1920 2160")) expected.push_back(line);
  expected.push_back("Creating Direct driver component \n");
  EXPECT_EQ(LogLines(), expected);
}

TEST_F(HeadsetTest, TakesTheLowerLimitsWhenNoKeyIsSet) {
  Make<HMDDriverVirtual>();
  Lines expected{"Using settings values\n"};
  for (const std::string& line : ConfigurationLines("1000 600", "500 600")) expected.push_back(line);
  EXPECT_EQ(LogLines(), expected);
}

TEST_F(HeadsetTest, KeepsItsDefaultsWithoutASettingsInterface) {
  Context().Clear();
  Make<HMDDriverVirtual>();
  EXPECT_EQ(LogLines(), ConfigurationLines("2560 1440", "1280 1440"));
}

TEST_F(HeadsetTest, HasTheRendererMakeItsDeviceAndNothingElse) {
  Make();
  EXPECT_EQ(renderer_->journal.All(), Lines{"CreateDevice"});
}

TEST_F(HeadsetTest, HasAPoseThatTheRuntimeIsNotTold) {
  Make();
  EXPECT_EQ(Pose().vecPosition[1], 1.7000000476837158);
  EXPECT_EQ(Pose().qRotation.w, 1.0);
  EXPECT_EQ(Pose().result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(Pose().poseIsValid);
  EXPECT_EQ(runtime_.Poses().Count(), 0U);
  EXPECT_EQ(PropertyLines(runtime_).size(), 0U);
}

TEST_F(HeadsetTest, AnswersForItsComponentsWhateverTheLetterCase) {
  Make();
  auto* direct = dynamic_cast<HMDDriverDirect*>(headset_.get());
  EXPECT_EQ(headset_->GetComponent("IVRDisplayComponent_002"), static_cast<vr::IVRDisplayComponent*>(direct));
  EXPECT_EQ(headset_->GetComponent("ivrdisplaycomponent_002"), static_cast<vr::IVRDisplayComponent*>(direct));
  EXPECT_EQ(headset_->GetComponent("iTRACKEDdeviceSERVERdriver_005"),
            static_cast<vr::ITrackedDeviceServerDriver*>(direct));
  EXPECT_EQ(headset_->GetComponent("IVRDRIVERDIRECTMODECOMPONENT_005"),
            static_cast<vr::IVRDriverDirectModeComponent*>(direct));
}

TEST_F(HeadsetTest, AnswersForNothingElse) {
  Make();
  for (const char* name : {"IVRVirtualDisplay_002", "IVRDisplayComponent_003", "IVRDisplayComponent_00", "",
                           "IVRDriverDirectModeComponent_004", "IVRCameraComponent_002"}) {
    EXPECT_EQ(headset_->GetComponent(name), nullptr) << name;
  }
  EXPECT_EQ(headset_->GetComponent(nullptr), nullptr);
}

TEST_F(HeadsetTest, TheVirtualOneAnswersForItsDisplayInstead) {
  Make<HMDDriverVirtual>();
  auto* display = dynamic_cast<vr::IVRVirtualDisplay*>(headset_.get());
  EXPECT_EQ(headset_->GetComponent("ivrVIRTUALdisplay_002"), display);
  EXPECT_EQ(headset_->GetComponent("IVRDriverDirectModeComponent_005"), nullptr);
  EXPECT_NE(headset_->GetComponent("IVRDisplayComponent_002"), nullptr);
}

TEST_F(HeadsetTest, AnswersADebugRequestWithAnEmptyText) {
  Make();
  char response[4] = "abc";
  headset_->DebugRequest("anything", response, sizeof(response));
  EXPECT_STREQ(response, "");
  EXPECT_EQ(response[1], 'b');
  char untouched = 'x';
  headset_->DebugRequest("anything", &untouched, 0);
  EXPECT_EQ(untouched, 'x');
}

TEST_F(HeadsetTest, ReadsNoSettingsOfOthersAndWritesNone) {
  runtime_.Settings().Set("other", "windowWidth", 4000);
  Make();
  std::uint32_t width = 0, height = 0;
  headset_->GetRecommendedRenderTargetSize(&width, &height);
  EXPECT_EQ(width, 500U);
  EXPECT_THAT(runtime_.Journal().Calls("IVRSettings."), testing::Each(testing::StartsWith("IVRSettings.Get")));
}

}  // namespace
}  // namespace ombrel::test
