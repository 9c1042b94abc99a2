#include "context/settings.h"

#include <gmock/gmock.h>

#include <utility>

#include "context/driver_context.h"
#include "runtime/fake_runtime.h"

namespace ombrel::test {
namespace {

class SettingsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None); }
  void TearDown() override {
    Context().Clear();
    EXPECT_THAT(runtime_.Journal().Calls("IVRSettings."), testing::Each(testing::StartsWith("IVRSettings.Get")));
  }
  void Set(const char* key, nlohmann::json value) { runtime_.Settings().Set("driver_ombrel", key, std::move(value)); }

  bench::FakeRuntime runtime_;
};

TEST_F(SettingsTest, ReadsTheDriversSection) {
  Set("windowWidth", 2560);
  runtime_.Settings().Set("other", "windowHeight", 5);
  EXPECT_EQ(ReadInt32Setting("windowWidth"), 2560);
  EXPECT_EQ(ReadInt32Setting("windowHeight"), 0);
}

TEST_F(SettingsTest, ReadsAMissingNumberAsZero) { EXPECT_EQ(ReadInt32Setting("renderScale"), 0); }

TEST_F(SettingsTest, AsksForNoErrorOfANumber) {
  Set("windowWidth", 2560);
  EXPECT_EQ(ReadInt32Setting("windowWidth") + ReadInt32Setting("missing"), 2560);
  const auto reads = runtime_.Journal().EntriesOf("IVRSettings.GetInt32");
  ASSERT_EQ(reads.size(), 2U);
  for (const auto& read : reads) EXPECT_FALSE(read.arguments.at("asksForError"));
}

TEST_F(SettingsTest, ReadsASwitchAsItIsStored) {
  Set("fakeSensorEnabled", false);
  EXPECT_FALSE(ReadBoolSetting("fakeSensorEnabled", true));
  Set("fakeSensorEnabled", true);
  EXPECT_TRUE(ReadBoolSetting("fakeSensorEnabled", false));
}

TEST_F(SettingsTest, TakesTheFallbackForAMissingSwitch) {
  EXPECT_TRUE(ReadBoolSetting("fakeSensorEnabled", true));
  EXPECT_FALSE(ReadBoolSetting("fakeSensorEnabled", false));
}

TEST_F(SettingsTest, TakesTheFallbackForAnyError) {
  for (const auto error :
       {vr::VRSettingsError_IPCFailed, vr::VRSettingsError_ReadFailed, vr::VRSettingsError_JsonParseFailed}) {
    runtime_.Settings().FailRead("driver_ombrel", "fakeSensorEnabled", error);
    EXPECT_TRUE(ReadBoolSetting("fakeSensorEnabled", true));
  }
}

TEST(SettingsWithoutRuntime, AreZeroAndOff) {
  EXPECT_EQ(ReadInt32Setting("windowWidth"), 0);
  EXPECT_FALSE(ReadBoolSetting("fakeSensorEnabled", true));
}

}  // namespace
}  // namespace ombrel::test
