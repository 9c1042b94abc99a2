// A headset that the runtime activates.
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
    runtime_.log.lines.Clear();
  }
};

TEST_F(HeadsetActivationTest, WritesItsPropertiesOneByOneInOrder) {
  EXPECT_EQ(headset_->Activate(3), vr::VRInitError_None);
  EXPECT_EQ(runtime_.properties.lines.All(),
            (Lines{"1003: 2007 4 1 false", "1003: 1025 4 1 true", "1003: 2003 1 4 0.065000", "1003: 2026 1 4 0.000000",
                   "1003: 2002 1 4 60.000000", "1003: 2001 1 4 0.005000", "1003: 1029 2 4 1", "1003: 2004 3 8 18",
                   "1003: 1001 5 7 Ombrel", "1003: 1002 5 4 0.8"}));
}

TEST_F(HeadsetActivationTest, LogsItsIndex) {
  headset_->Activate(3);
  EXPECT_EQ(LogLines(), Lines{"HMD activated with id 3 \n"});
}

TEST_F(HeadsetActivationTest, SetsTheRendererUpForTheWholeWindowOnce) {
  headset_->Activate(3);
  EXPECT_EQ(renderer_->journal.All(), (Lines{"CreateDevice", "Configure 28 2560 1440 0", "CreateOutputTextures"}));
  headset_->Activate(3);
  EXPECT_EQ(renderer_->journal.Size(), 3U);
}

TEST_F(HeadsetActivationTest, ReportsItselfWorn) {
  headset_->Activate(3);
  EXPECT_EQ(runtime_.input.All(), (Lines{"Create 1003 /proximity", "Update 5 true 0.000000"}));
  headset_->ReportWorn();
  EXPECT_EQ(runtime_.input.From(2), Lines{"Update 5 true 0.000000"});
}

TEST_F(HeadsetActivationTest, GivesAProximityInputThatCouldNotBeMadeNoValue) {
  runtime_.createInputResult = vr::VRInputError_MaxCapacityReached;
  EXPECT_EQ(headset_->Activate(3), vr::VRInitError_None);
  headset_->ReportWorn();
  EXPECT_EQ(runtime_.input.All(), Lines{"Create 1003 /proximity"});
  const std::string number = std::to_string(vr::VRInputError_MaxCapacityReached);
  EXPECT_EQ(LogLines().back(), "Error while creating proximity sensor: " + number + " \n");
  EXPECT_EQ(runtime_.host.updates.All(), Lines{"3 280"});
}

// Frames go on while the runtime activates it once more.
TEST_F(HeadsetActivationTest, IsWornByAnInputThatIsWholeOnly) {
  headset_->Activate(3);
  runtime_.createInputResult = vr::VRInputError_MaxCapacityReached;
  runtime_.onCreateInput = [this](vr::VRInputComponentHandle_t* handle) {
    *handle = 99;
    Background server([this] { headset_->ReportWorn(); });
    EXPECT_TRUE(server.Finishes());
  };
  headset_->Activate(3);
  headset_->ReportWorn();
  EXPECT_EQ(runtime_.input.From(2), (Lines{"Create 1003 /proximity", "Update 5 true 0.000000"}));
}

TEST_F(HeadsetActivationTest, SendsItsPoseAtTheEnd) {
  headset_->Activate(3);
  EXPECT_EQ(runtime_.host.updates.All(), Lines{"3 280"});
  EXPECT_EQ(runtime_.host.LastPose().vecPosition[1], 1.7000000476837158);
}

TEST_F(HeadsetActivationTest, DoesWithoutInputs) {
  Context().Clear();
  runtime_.withheld = {"IVRDriverInput_001"};
  ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
  EXPECT_EQ(headset_->Activate(3), vr::VRInitError_None);
  headset_->ReportWorn();
  EXPECT_EQ(runtime_.input.Size(), 0U);
  EXPECT_EQ(runtime_.host.updates.Size(), 1U);
}

TEST_F(HeadsetActivationTest, IsNotWornBeforeAndAfterwards) {
  headset_->ReportWorn();
  EXPECT_EQ(runtime_.input.Size(), 0U);
  headset_->Activate(3);
  headset_->Deactivate();
  headset_->ReportWorn();
  EXPECT_EQ(runtime_.input.Size(), 2U);
}

TEST_F(HeadsetActivationTest, LogsItsEndAndSendsNothingMore) {
  headset_->Activate(3);
  headset_->Deactivate();
  EXPECT_EQ(LogLines().back(), "Driver deactivated: Ombrel \n");
  headset_->OnTrackingUpdated();
  EXPECT_EQ(runtime_.host.updates.Size(), 1U);
}

TEST_F(HeadsetActivationTest, DoesNothingInStandby) {
  headset_->EnterStandby();
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(HeadsetActivationTest, TakesANewFrameRateAsAProperty) {
  headset_->Activate(3);
  runtime_.properties.lines.Clear();
  headset_->OnFramerateUpdated(72);
  EXPECT_EQ(runtime_.properties.lines.All(), Lines{"1003: 2002 1 4 72.000000"});
  EXPECT_EQ(LogLines().back(), "Updating headset fps, new value: 72.000000 \n");
}

TEST_F(HeadsetActivationTest, TakesANewFrameRateBeforeActivationToo) {
  headset_->OnFramerateUpdated(90);
  EXPECT_EQ(runtime_.properties.lines.All(), Lines{"0: 2002 1 4 90.000000"});
  headset_->Activate(3);
  EXPECT_EQ(runtime_.properties.lines.From(5)[0], "1003: 2002 1 4 90.000000");
}

// Whatever the link's thread does meanwhile: the last rate is the one that stands.
TEST_F(HeadsetActivationTest, FrameRatesThatComeInTheMiddleOfActivationAreWrittenBehindIt) {
  std::unique_ptr<Background> link;
  runtime_.properties.onLine = [&](const std::string& line) {
    // Ahead of the rate that Activate has read.
    if (line != "1003: 2002 1 4 60.000000") return;
    link = std::make_unique<Background>([this] {
      headset_->OnFramerateUpdated(72);
      headset_->OnFramerateUpdated(90);
    });
    EXPECT_TRUE(link->StaysBlocked());
  };
  headset_->Activate(3);
  ASSERT_TRUE(link && link->Finishes());
  Lines rates;
  for (const std::string& line : runtime_.properties.lines.All()) {
    if (line.find(": 2002 ") != std::string::npos) rates.push_back(line);
  }
  EXPECT_EQ(rates, (Lines{"1003: 2002 1 4 60.000000", "1003: 2002 1 4 72.000000", "1003: 2002 1 4 90.000000"}));
}

TEST_F(HeadsetActivationTest, TakesTheFrameRateAsSigned) {
  headset_->OnFramerateUpdated(0xFFFFFFFFU);
  headset_->OnFramerateUpdated(0x80000000U);
  EXPECT_EQ(LogLines(), (Lines{"Updating headset fps, new value: -1.000000 \n",
                               "Updating headset fps, new value: -2147483648.000000 \n"}));
}

}  // namespace
}  // namespace ombrel::test
