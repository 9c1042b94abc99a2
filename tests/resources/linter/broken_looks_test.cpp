// Icons and texts: each test breaks one thing of a sound folder, and the linter names it.
#include "broken_folder.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

using BrokenLooks = BrokenFolder;

TEST_F(BrokenLooks, IconMissing) {
  Remove("resources/icons/headset_ready.png");
  ExpectFaults({"{ombrel}/icons/headset_ready.png does not exist", "headset_ready@2x.png: nothing names it"});
}

TEST_F(BrokenLooks, IconWithoutItsDenseForm) {
  Remove("resources/icons/headset_ready@2x.png");
  ExpectFault("headset_ready@2x.png: is not a whole PNG file");
}

TEST_F(BrokenLooks, IconOfAnotherDevicesSize) {
  Write("resources/icons/headset_off.png", Read("resources/icons/controller_off.png"));
  ExpectFault("headset_off.png: is not 50 x 32");
}

TEST_F(BrokenLooks, IconThatIsNotDenseEnough) {
  Write("resources/icons/controller_off@2x.png", Read("resources/icons/controller_off.png"));
  ExpectFault("controller_off@2x.png: is not 64 x 64");
}

TEST_F(BrokenLooks, IconCutShort) {
  const std::string whole = Read("resources/icons/base_station_low.png");
  Write("resources/icons/base_station_low.png", whole.substr(0, whole.size() - 1));
  ExpectFault("base_station_low.png: is not a whole PNG file");
}

TEST_F(BrokenLooks, IconOfAnotherFormat) {
  Write("resources/icons/base_station_low.png", "GIF89a");
  ExpectFault("base_station_low.png: is not a whole PNG file");
}

TEST_F(BrokenLooks, IconThatNothingNames) {
  Write("resources/icons/spare.png", Read("resources/icons/controller_off.png"));
  ExpectFault("spare.png: nothing names it");
}

TEST_F(BrokenLooks, StateWithoutAnIcon) {
  Edit(kIcons, [](json& icons) { icons["statusicons"]["HMD"].erase("Prop_NamedIconPathDeviceStandby_String"); });
  ExpectFaults({"HMD has no Prop_NamedIconPathDeviceStandby_String", "headset_standby.png: nothing names it",
                "headset_standby@2x.png: nothing names it"});
}

TEST_F(BrokenLooks, StateThatTheRuntimeDoesNotKnow) {
  Edit(kIcons, [](json& icons) {
    icons["statusicons"]["HMD"]["Prop_NamedIconPathDeviceAsleep_String"] = "{ombrel}/icons/headset_off.png";
  });
  ExpectFault("HMD has Prop_NamedIconPathDeviceAsleep_String, which the runtime does not know");
}

TEST_F(BrokenLooks, DeviceWithoutIcons) {
  Edit(kIcons, [](json& icons) { icons["statusicons"].erase("TrackingReference"); });
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("has no icons for TrackingReference")));
}

TEST_F(BrokenLooks, DeviceThatTheDriverDoesNotMake) {
  Edit(kIcons, [](json& icons) { icons["statusicons"]["GenericTracker"] = icons["statusicons"]["Controller"]; });
  ExpectFault("the driver makes no GenericTracker");
}

TEST_F(BrokenLooks, DiagramThatIsNoPicture) {
  Write("resources/icons/controller_diagram.png", "<svg/>");
  ExpectFaults({"controller_diagram.png: is not a whole PNG file", "controller_diagram.png: is not a whole PNG file"});
}

TEST_F(BrokenLooks, TextMissingInOneLanguage) {
  Edit(kTexts, [](json& texts) { texts[1].erase("/input/trigger"); });
  ExpectFault("de_DE has no text for /input/trigger");
}

TEST_F(BrokenLooks, EmptyText) {
  Edit(kTexts, [](json& texts) { texts[0]["/input/trigger"] = ""; });
  ExpectFault("en_US has no text for /input/trigger");
}

TEST_F(BrokenLooks, TextForAPathThatIsNotThere) {
  Edit(kTexts, [](json& texts) { texts[0]["/input/joystick"] = "Stick"; });
  ExpectFault("en_US has a text for /input/joystick, which is not there");
}

TEST_F(BrokenLooks, LanguageMissing) {
  Edit(kTexts, [](json& texts) { texts.erase(1); });
  ExpectFault("has no de_DE");
}

TEST_F(BrokenLooks, LanguageTwice) {
  Edit(kTexts, [](json& texts) { texts.push_back(texts[0]); });
  ExpectFault("a language comes twice");
}

TEST_F(BrokenLooks, LanguageOfAnOddName) {
  Edit(kTexts, [](json& texts) {
    texts.push_back(texts[0]);
    texts[2]["language_tag"] = "french";
  });
  ExpectFault("french is no language");
}

TEST_F(BrokenLooks, TextThatIsNotUtf8) {
  ReplaceText(kTexts, "Men\xc3\xbctaste", "Men\xfctaste");
  ExpectFaults({"localization.json: is not valid JSON", "localization.json: is missing or no list"});
}

}  // namespace
}  // namespace ombrel::test
