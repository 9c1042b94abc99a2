#include "runtime/fake_settings.h"

#include <gtest/gtest.h>

#include "test_files/scratch_folder.h"

namespace bench {
namespace {

constexpr const char* kSection = "driver_toy";

class FakeSettingsTest : public testing::Test {
 protected:
  CallRecorder recorder;
  FakeSettings settings{recorder};
  vr::EVRSettingsError error = vr::VRSettingsError_IPCFailed;
  ombrel::test::ScratchFolder folder;
};

TEST_F(FakeSettingsTest, OverridesLieOverDefaultsKeyByKey) {
  settings.LoadDefaults(folder.Write("defaults.vrsettings", R"({"driver_toy": {"width": 100, "height": 50}})"));
  settings.LoadOverrides(
      folder.Write("overrides.vrsettings", R"({"driver_toy": {"width": 300}, "other": {"height": 1}})"));
  EXPECT_EQ(settings.GetInt32(kSection, "width", &error), 300);
  EXPECT_EQ(error, vr::VRSettingsError_None);
  EXPECT_EQ(settings.GetInt32(kSection, "height", &error), 50);
  EXPECT_EQ(error, vr::VRSettingsError_None);
}

TEST_F(FakeSettingsTest, AMissingKeyIsZeroWithItsError) {
  settings.SetDefaults({{kSection, {{"there", 1}}}});
  EXPECT_EQ(settings.GetInt32(kSection, "missing", &error), 0);
  EXPECT_EQ(error, vr::VRSettingsError_UnsetSettingHasNoDefault);
  EXPECT_FALSE(settings.GetBool(kSection, "missing", &error));
  EXPECT_EQ(error, vr::VRSettingsError_UnsetSettingHasNoDefault);
  EXPECT_EQ(settings.GetFloat("no_section", "there", &error), 0.0F);
  EXPECT_EQ(error, vr::VRSettingsError_UnsetSettingHasNoDefault);
  char text[8] = "before";
  settings.GetString(kSection, "missing", text, sizeof text, &error);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(error, vr::VRSettingsError_UnsetSettingHasNoDefault);
}

TEST_F(FakeSettingsTest, AValueOfTheWrongKindIsAnError) {
  settings.SetDefaults({{kSection, {{"text", "yes"}, {"number", 7}}}});
  EXPECT_FALSE(settings.GetBool(kSection, "text", &error));
  EXPECT_EQ(error, vr::VRSettingsError_ReadFailed);
  char text[8];
  settings.GetString(kSection, "number", text, sizeof text, &error);
  EXPECT_EQ(error, vr::VRSettingsError_ReadFailed);
}

TEST_F(FakeSettingsTest, WritesShadowDefaultsUntilRemoved) {
  settings.SetDefaults({{kSection, {{"width", 100}}}});
  settings.SetInt32(kSection, "width", 5, &error);
  EXPECT_EQ(settings.GetInt32(kSection, "width", nullptr), 5);
  settings.RemoveKeyInSection(kSection, "width", &error);
  EXPECT_EQ(settings.GetInt32(kSection, "width", nullptr), 100);
}

TEST_F(FakeSettingsTest, LongTextIsCutToTheBuffer) {
  settings.SetOverrides({{kSection, {{"text", "abcdefgh"}}}});
  char text[4] = {};
  settings.GetString(kSection, "text", text, sizeof text, &error);
  EXPECT_STREQ(text, "abc");
}

TEST_F(FakeSettingsTest, RefusesAFileThatIsNoSettingsFile) {
  EXPECT_THROW(settings.LoadDefaults(folder.Write("broken.vrsettings", R"({"driver_toy": )")), std::runtime_error);
  EXPECT_THROW(settings.LoadDefaults(folder.Write("flat.vrsettings", R"({"width": 100})")), std::runtime_error);
  EXPECT_THROW(settings.LoadDefaults("no/such/file.vrsettings"), std::runtime_error);
}

}  // namespace
}  // namespace bench
