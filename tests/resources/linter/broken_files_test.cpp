// Manifest, settings, references, scripts: each test breaks one thing of a sound folder, and the linter names it.
#include "broken_folder.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

using BrokenFiles = BrokenFolder;

TEST_F(BrokenFiles, NothingBrokenIsNoFault) { ExpectFaults({}); }

TEST_F(BrokenFiles, JsonThatDoesNotParse) {
  ReplaceText(kRemapping, "\"layouts\": [", "\"layouts\": [,");
  ExpectFaults({"remapping.json: is not valid JSON", "remapping.json: \"to_controller_type\" is not the profile's",
                "remapping.json: has no \"layouts\""});
}

TEST_F(BrokenFiles, JsonWithAKeyTwice) {
  ReplaceText(kIcons, "\"jsonid\"", "\"jsonid\": \"vrresources\", \"jsonid\"");
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("the key \"jsonid\" stands there twice")));
}

TEST_F(BrokenFiles, NoManifest) {
  Remove(kManifest);
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("driver.vrdrivermanifest: is missing")));
}

TEST_F(BrokenFiles, LibraryMissing) {
  Remove("bin/win64/driver_ombrel.dll");
  ExpectFault("whose library bin/win64/driver_ombrel.dll is missing");
}

TEST_F(BrokenFiles, ManifestOfAnotherName) {
  Edit(kManifest, [](json& manifest) { manifest["name"] = "other"; });
  EXPECT_THAT(Found(), testing::IsSupersetOf({testing::HasSubstr("library bin/win64/driver_other.dll is missing"),
                                              testing::HasSubstr("the driver reads another section"),
                                              testing::HasSubstr("is of another driver")}));
}

TEST_F(BrokenFiles, ManifestPointsElsewhere) {
  Edit(kManifest, [](json& manifest) { manifest["directory"] = "bin"; });
  ExpectFault("\"directory\" is not the manifest's own folder");
}

TEST_F(BrokenFiles, ManifestOfResourcesOnly) {
  Edit(kManifest, [](json& manifest) { manifest["resourceOnly"] = true; });
  ExpectFault("\"resourceOnly\" is not false");
}

TEST_F(BrokenFiles, ManifestThatDoesNotSayWhenToActivate) {
  Edit(kManifest, [](json& manifest) { manifest.erase("alwaysActivate"); });
  ExpectFault("\"alwaysActivate\" is no truth value");
}

TEST_F(BrokenFiles, ManifestWithoutPresence) {
  Edit(kManifest, [](json& manifest) { manifest["hmd_presence"] = json::array(); });
  ExpectFault("\"hmd_presence\" lists no USB ids");
}

TEST_F(BrokenFiles, ManifestWithAnOddPresence) {
  Edit(kManifest, [](json& manifest) { manifest["hmd_presence"] = {"*"}; });
  ExpectFault("\"hmd_presence\" lists no USB ids");
}

TEST_F(BrokenFiles, SettingsOfAnotherSection) {
  ReplaceText(kSettings, "driver_ombrel", "driver_Ombrel");
  ExpectFault("has not the one section \"driver_ombrel\"");
}

TEST_F(BrokenFiles, DriverThatReadsAnotherSection) {
  facts.settingsSection = "ombrel";
  ExpectFault("the driver reads another section");
}

TEST_F(BrokenFiles, SettingNotShipped) {
  Edit(kSettings, [](json& settings) { settings["driver_ombrel"].erase("renderScale"); });
  ExpectFault("lacks \"renderScale\", which the driver reads");
}

TEST_F(BrokenFiles, SettingNotRead) {
  Edit(kSettings, [](json& settings) { settings["driver_ombrel"]["renderscale"] = 100; });
  ExpectFault("has \"renderscale\", which the driver does not read");
}

TEST_F(BrokenFiles, DriverThatReadsOneMoreSetting) {
  facts.settings["ipd"] = SettingType::kInt32;
  ExpectFault("lacks \"ipd\", which the driver reads");
}

TEST_F(BrokenFiles, NumberForATruthValue) {
  Edit(kSettings, [](json& settings) { settings["driver_ombrel"]["fakeSensorEnabled"] = 1; });
  ExpectFault("\"fakeSensorEnabled\" is of another type");
}

TEST_F(BrokenFiles, FractionForANumber) {
  Edit(kSettings, [](json& settings) { settings["driver_ombrel"]["windowWidth"] = 2560.0; });
  ExpectFault("\"windowWidth\" is of another type");
}

TEST_F(BrokenFiles, FileOfTheDriverThatDoesNotExist) {
  facts.references.insert("{ombrel}/icons/none.png");
  ExpectFault("the driver: {ombrel}/icons/none.png does not exist");
}

TEST_F(BrokenFiles, FileOfAnotherDriver) {
  facts.references.insert("{other}/icons/headset_off.png");
  ExpectFault("{other}/icons/headset_off.png is of another driver");
}

TEST_F(BrokenFiles, FileThatNothingNames) {
  Write("resources/input/forgotten.txt", "?");
  ExpectFault("forgotten.txt: nothing names it");
}

TEST_F(BrokenFiles, ScriptMissing) {
  Remove("uninstall.cmd");
  ExpectFault("uninstall.cmd: is missing");
}

TEST_F(BrokenFiles, ScriptWithoutCarriageReturns) {
  ReplaceText("install.cmd", "\r\n", "\n");
  ExpectFault("install.cmd: has a line without a carriage return");
}

TEST_F(BrokenFiles, ScriptWithAnUmlaut) {
  ReplaceText("install.cmd", "Nothing", "N\xc3\xbcx");
  ExpectFault("install.cmd: has letters beyond ASCII");
}

}  // namespace
}  // namespace ombrel::test
