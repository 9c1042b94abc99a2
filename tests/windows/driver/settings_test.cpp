// What the driver asks of the settings store, and what it makes of the sizes it finds there.
#include <gmock/gmock.h>

#include <optional>
#include <ostream>

#include "support/driver_test.h"

namespace ombrel::test {
namespace {

class SettingsTest : public DriverTest {
 protected:
  // Keys in the order in which the driver read them, all of its own section.
  std::vector<std::string> KeysRead() {
    std::vector<std::string> keys;
    for (const auto& entry : runtime.Journal().Entries()) {
      if (!entry.call.starts_with("IVRSettings.")) continue;
      EXPECT_EQ(entry.arguments.at("section"), "driver_ombrel");
      keys.push_back(entry.call.substr(12) + " " + entry.arguments.at("key").get<std::string>());
    }
    return keys;
  }
};

TEST_F(SettingsTest, EachKeyIsReadOnceAndInOrder) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_THAT(KeysRead(),
              testing::ElementsAre("GetBool fakeSensorEnabled", "GetInt32 hmdMode", "GetInt32 windowWidth",
                                   "GetInt32 windowHeight", "GetInt32 renderScale", "GetInt32 RotationOffsetXDeg",
                                   "GetInt32 RotationOffsetYDeg", "GetInt32 RotationOffsetZDeg"));
}

TEST_F(SettingsTest, NothingIsReadAfterInit) {
  ASSERT_EQ(Init(), vr::VRInitError_None);
  const std::size_t read = KeysRead().size();
  Headset().Activate(0);
  FakeSensor().Activate(1);
  Provider().RunFrame();
  EXPECT_EQ(KeysRead().size(), read);
}

struct FakeSensorCase {
  const char* name;
  std::optional<bool> stored;
  vr::EVRSettingsError error = vr::VRSettingsError_None;
  bool added;
};

class FakeSensorSettingTest : public SettingsTest, public ::testing::WithParamInterface<FakeSensorCase> {};

TEST_P(FakeSensorSettingTest, DecidesWhetherThereIsABaseStation) {
  if (GetParam().stored) Set("fakeSensorEnabled", *GetParam().stored);
  if (GetParam().error != vr::VRSettingsError_None) {
    runtime.Settings().FailRead("driver_ombrel", "fakeSensorEnabled", GetParam().error);
  }
  ASSERT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime.Host().Added().size(), GetParam().added ? 2U : 1U);
}

INSTANTIATE_TEST_SUITE_P(
    , FakeSensorSettingTest,
    testing::Values(
        FakeSensorCase{.name = "Missing", .stored = {}, .added = true},
        FakeSensorCase{.name = "Off", .stored = false, .added = false},
        FakeSensorCase{.name = "On", .stored = true, .added = true},
        FakeSensorCase{
            .name = "OffButUnreadable", .stored = false, .error = vr::VRSettingsError_ReadFailed, .added = true},
        FakeSensorCase{.name = "OffButNoIPC", .stored = false, .error = vr::VRSettingsError_IPCFailed, .added = true}),
    [](const auto& test) { return std::string(test.param.name); });

struct SizeCase {
  const char* name;
  std::optional<int> width, height, scale;
  std::uint32_t eyeWidth, eyeHeight;
};

class SizeTest : public SettingsTest, public ::testing::WithParamInterface<SizeCase> {};

TEST_P(SizeTest, FollowsTheSettings) {
  if (GetParam().width) Set("windowWidth", *GetParam().width);
  if (GetParam().height) Set("windowHeight", *GetParam().height);
  if (GetParam().scale) Set("renderScale", *GetParam().scale);
  ASSERT_EQ(Init(), vr::VRInitError_None);
  std::uint32_t width = 0, height = 0;
  Display().GetRecommendedRenderTargetSize(&width, &height);
  EXPECT_EQ(width, GetParam().eyeWidth);
  EXPECT_EQ(height, GetParam().eyeHeight);
  std::int32_t x = 0, y = 0;
  Display().GetWindowBounds(&x, &y, &width, &height);
  EXPECT_EQ(x, -1);
  EXPECT_EQ(y, -1);
  EXPECT_EQ(width, 2 * GetParam().eyeWidth) << "the window follows the scaled picture";
  EXPECT_EQ(height, GetParam().eyeHeight);
}

INSTANTIATE_TEST_SUITE_P(, SizeTest,
                         testing::Values(SizeCase{"NoKeys", {}, {}, {}, 500, 600},
                                         SizeCase{"Scaled150", 2560, 1440, 150, 1920, 2160},
                                         SizeCase{"Scaled100", 2560, 1440, 100, 1280, 1440},
                                         SizeCase{"Scale50IsAs100", 2560, 1440, 50, 1280, 1440},
                                         SizeCase{"NoScaleIsAs100", 2560, 1440, {}, 1280, 1440},
                                         SizeCase{"NegativeScaleIsAs100", 2560, 1440, -150, 1280, 1440},
                                         SizeCase{"OddWidthIsHalvedFirst", 1921, 1440, 150, 1440, 2160},
                                         SizeCase{"OddWidthIsCutOffTwice", 1921, 1440, 133, 1276, 1915},
                                         SizeCase{"OddWidth1921", 1921, 1440, 100, 960, 1440},
                                         SizeCase{"NoHeight", 2560, 0, 100, 1280, 600},
                                         SizeCase{"NegativeSizes", -2560, -1440, 100, 500, 600},
                                         SizeCase{"JustBelowTheLimits", 998, 599, 100, 500, 600},
                                         SizeCase{"JustAboveTheLimits", 1002, 601, 100, 501, 601},
                                         SizeCase{"FractionsAreCutOff", 2002, 1001, 133, 1331, 1331},
                                         SizeCase{"ScaleBringsItAboveTheLimits", 600, 400, 200, 600, 800}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace ombrel::test
