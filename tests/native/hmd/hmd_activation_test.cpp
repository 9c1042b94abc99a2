// A headset that the runtime activates.
#include <algorithm>
#include "hmd_fixture.h"

namespace ombrel::test {
namespace {

using Lines = Journal::Lines;

class HeadsetActivationTest : public HeadsetTest {
 protected:
  void SetUp() override {
    Set("windowWidth", 2560);
    Set("windowHeight", 1440);
    Make();
    runtime_.Log().TakeNew();
  }
};

TEST_F(HeadsetActivationTest, WritesItsPropertiesOneByOneInOrder) {
  EXPECT_EQ(headset_->Activate(3), vr::VRInitError_None);
  EXPECT_EQ(PropertyLines(runtime_),
            (Lines{"3: 2007 4 1 false", "3: 1025 4 1 true", "3: 2003 1 4 0.065000", "3: 2026 1 4 0.000000",
                   "3: 2002 1 4 60.000000", "3: 2001 1 4 0.005000", "3: 1029 2 4 1", "3: 2004 3 8 18",
                   "3: 1001 5 7 Ombrel", "3: 1002 5 4 0.8"}));
}

TEST_F(HeadsetActivationTest, DoesNotMindThatTheRuntimeRefusesAProperty) {
  runtime_.Properties().FailWrite(vr::Prop_IsOnDesktop_Bool, vr::TrackedProp_PermissionDenied);
  EXPECT_EQ(headset_->Activate(3), vr::VRInitError_None);
  EXPECT_EQ(PropertyLines(runtime_).size(), 10U);
}

TEST_F(HeadsetActivationTest, TellsOfItselfInItsOrder) {
  runtime_.Journal().Clear();
  headset_->Activate(3);
  std::vector<std::string> calls = runtime_.Journal().Calls("IVR");
  const auto repeated = std::ranges::unique(calls);
  calls.erase(repeated.begin(), repeated.end());
  EXPECT_EQ(calls, (Lines{"IVRProperties.TrackedDeviceToPropertyContainer", "IVRDriverLog.Log",
                          "IVRProperties.WritePropertyBatch", "IVRDriverContext.GetGenericInterface",
                          "IVRDriverInput.CreateBooleanComponent", "IVRDriverInput.UpdateBooleanComponent",
                          "IVRServerDriverHost.TrackedDevicePoseUpdated"}));
}

TEST_F(HeadsetActivationTest, LogsItsIndex) {
  headset_->Activate(3);
  EXPECT_EQ(runtime_.Log().TakeNew(), Lines{"HMD activated with id 3 \n"});
}

TEST_F(HeadsetActivationTest, SetsTheRendererUpForTheWholeWindowOnce) {
  headset_->Activate(3);
  EXPECT_EQ(renderer_->journal.All(), (Lines{"CreateDevice", "Configure 28 2560 1440 0", "CreateOutputTextures"}));
  headset_->Activate(3);
  EXPECT_EQ(renderer_->journal.Size(), 3U);
}

TEST_F(HeadsetActivationTest, ReportsItselfWorn) {
  headset_->Activate(3);
  EXPECT_EQ(InputLines(runtime_), (Lines{"create 3 /proximity", "/proximity true"}));
  headset_->ReportWorn();
  EXPECT_EQ(From(2, InputLines(runtime_)), Lines{"/proximity true"});
}

TEST_F(HeadsetActivationTest, GivesAProximityInputThatCouldNotBeMadeNoValue) {
  runtime_.Input().FailCreate("/proximity", vr::VRInputError_MaxCapacityReached, 99);
  EXPECT_EQ(headset_->Activate(3), vr::VRInitError_None);
  headset_->ReportWorn();
  EXPECT_EQ(InputLines(runtime_), Lines{"create 3 /proximity"});
  const std::string number = std::to_string(vr::VRInputError_MaxCapacityReached);
  EXPECT_EQ(LogLines().back(), "Error while creating proximity sensor: " + number + " \n");
  EXPECT_EQ(PoseLines(runtime_), Lines{"3 280"});
}

// Frames go on while the runtime activates it once more.
TEST_F(HeadsetActivationTest, IsWornByAnInputThatIsWholeOnly) {
  headset_->Activate(3);
  runtime_.Input().FailCreate("/proximity", vr::VRInputError_MaxCapacityReached, 99);
  runtime_.Input().onCreate = [this](const std::string&, vr::VRInputComponentHandle_t* handle) {
    *handle = 99;
    Background server([this] { headset_->ReportWorn(); });
    EXPECT_TRUE(server.Finishes());
  };
  headset_->Activate(3);
  headset_->ReportWorn();
  EXPECT_EQ(From(2, InputLines(runtime_)), (Lines{"create 3 /proximity", "/proximity true"}));
}

TEST_F(HeadsetActivationTest, SendsItsPoseAtTheEnd) {
  headset_->Activate(3);
  EXPECT_EQ(PoseLines(runtime_), Lines{"3 280"});
  EXPECT_EQ(LastPose().vecPosition[1], 1.7000000476837158);
}

TEST_F(HeadsetActivationTest, DoesWithoutInputs) {
  Context().Clear();
  runtime_.Withhold("IVRDriverInput_001");
  ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(headset_->Activate(3), vr::VRInitError_None);
  headset_->ReportWorn();
  EXPECT_EQ(InputLines(runtime_).size(), 0U);
  EXPECT_EQ(runtime_.Poses().Count(), 1U);
}

TEST_F(HeadsetActivationTest, IsNotWornOnceTheRuntimesInterfacesAreGone) {
  headset_->Activate(3);
  Context().Clear();
  headset_->ReportWorn();
  EXPECT_EQ(InputLines(runtime_).size(), 2U);
}

TEST_F(HeadsetActivationTest, IsNotWornBeforeAndAfterwards) {
  headset_->ReportWorn();
  EXPECT_EQ(InputLines(runtime_).size(), 0U);
  headset_->Activate(3);
  headset_->Deactivate();
  headset_->ReportWorn();
  EXPECT_EQ(InputLines(runtime_).size(), 2U);
}

TEST_F(HeadsetActivationTest, LogsItsEndAndSendsNothingMore) {
  headset_->Activate(3);
  headset_->Deactivate();
  EXPECT_EQ(LogLines().back(), "Driver deactivated: Ombrel \n");
  headset_->OnTrackingUpdated();
  EXPECT_EQ(runtime_.Poses().Count(), 1U);
}

TEST_F(HeadsetActivationTest, DoesNothingInStandby) {
  headset_->EnterStandby();
  EXPECT_TRUE(runtime_.Log().TakeNew().empty());
}

TEST_F(HeadsetActivationTest, TakesANewFrameRateAsAProperty) {
  headset_->Activate(3);
  const std::size_t before = PropertyLines(runtime_).size();
  headset_->OnFramerateUpdated(72);
  EXPECT_EQ(From(before, PropertyLines(runtime_)), Lines{"3: 2002 1 4 72.000000"});
  EXPECT_EQ(LogLines().back(), "Updating headset fps, new value: 72.000000 \n");
}

TEST_F(HeadsetActivationTest, TakesANewFrameRateBeforeActivationToo) {
  headset_->OnFramerateUpdated(90);
  EXPECT_EQ(PropertyLines(runtime_), Lines{"none: 2002 1 4 90.000000"});
  headset_->Activate(3);
  EXPECT_EQ(PropertyLines(runtime_)[5], "3: 2002 1 4 90.000000");
}

// Whatever the link's thread does meanwhile: the last rate is the one that stands.
TEST_F(HeadsetActivationTest, FrameRatesThatComeInTheMiddleOfActivationAreWrittenBehindIt) {
  std::unique_ptr<Background> link;
  runtime_.Properties().onWrite = [&](auto, const vr::PropertyWrite_t& write) {
    // Ahead of the rate that Activate has read.
    if (write.prop != vr::Prop_DisplayFrequency_Float || link) return;
    link = std::make_unique<Background>([this] {
      headset_->OnFramerateUpdated(72);
      headset_->OnFramerateUpdated(90);
    });
    EXPECT_TRUE(link->StaysBlocked());
  };
  headset_->Activate(3);
  ASSERT_TRUE(link && link->Finishes());
  Lines rates;
  for (const std::string& line : PropertyLines(runtime_)) {
    if (line.find(": 2002 ") != std::string::npos) rates.push_back(line);
  }
  EXPECT_EQ(rates, (Lines{"3: 2002 1 4 60.000000", "3: 2002 1 4 72.000000", "3: 2002 1 4 90.000000"}));
}

TEST_F(HeadsetActivationTest, TakesTheFrameRateAsSigned) {
  headset_->OnFramerateUpdated(0xFFFFFFFFU);
  headset_->OnFramerateUpdated(0x80000000U);
  EXPECT_EQ(runtime_.Log().TakeNew(), (Lines{"Updating headset fps, new value: -1.000000 \n",
                                             "Updating headset fps, new value: -2147483648.000000 \n"}));
}

}  // namespace
}  // namespace ombrel::test
