#include "context/settings.h"

#include <gtest/gtest.h>

#include "context/driver_context.h"
#include "support/fake_runtime.h"

namespace ombrel::test {
namespace {

class SettingsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None); }
  void TearDown() override {
    Context().Clear();
    EXPECT_EQ(runtime_.settings.writes, 0);
  }

  FakeRuntime runtime_;
};

TEST_F(SettingsTest, ReadsTheDriversSection) {
  runtime_.settings.values = {{"driver_ombrel/windowWidth", 2560}, {"other/windowHeight", 5}};
  EXPECT_EQ(ReadInt32Setting("windowWidth"), 2560);
  EXPECT_EQ(ReadInt32Setting("windowHeight"), 0);
}

TEST_F(SettingsTest, ReadsAMissingNumberAsZero) { EXPECT_EQ(ReadInt32Setting("renderScale"), 0); }

TEST_F(SettingsTest, AsksForNoErrorOfANumber) {
  runtime_.settings.values = {{"driver_ombrel/windowWidth", 2560}};
  EXPECT_EQ(ReadInt32Setting("windowWidth") + ReadInt32Setting("missing"), 2560);
  EXPECT_EQ(runtime_.settings.numberErrorsAskedFor, 0);
}

TEST_F(SettingsTest, ReadsASwitchAsItIsStored) {
  runtime_.settings.values = {{"driver_ombrel/fakeSensorEnabled", 0}};
  EXPECT_FALSE(ReadBoolSetting("fakeSensorEnabled", true));
  runtime_.settings.values = {{"driver_ombrel/fakeSensorEnabled", 1}};
  EXPECT_TRUE(ReadBoolSetting("fakeSensorEnabled", false));
}

TEST_F(SettingsTest, TakesTheFallbackForAMissingSwitch) {
  EXPECT_TRUE(ReadBoolSetting("fakeSensorEnabled", true));
  EXPECT_FALSE(ReadBoolSetting("fakeSensorEnabled", false));
}

TEST_F(SettingsTest, TakesTheFallbackForAnyError) {
  runtime_.settings.values = {{"driver_ombrel/fakeSensorEnabled", 0}};
  for (const auto error :
       {vr::VRSettingsError_IPCFailed, vr::VRSettingsError_ReadFailed, vr::VRSettingsError_JsonParseFailed}) {
    runtime_.settings.boolError = error;
    EXPECT_TRUE(ReadBoolSetting("fakeSensorEnabled", true));
  }
}

TEST(SettingsWithoutRuntime, AreZeroAndOff) {
  EXPECT_EQ(ReadInt32Setting("windowWidth"), 0);
  EXPECT_FALSE(ReadBoolSetting("fakeSensorEnabled", true));
}

}  // namespace
}  // namespace ombrel::test
