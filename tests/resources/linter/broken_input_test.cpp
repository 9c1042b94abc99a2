// The input profile and the bindings: each test breaks one thing of a sound folder, and the linter names it.
#include "broken_folder.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

using BrokenInput = BrokenFolder;

TEST_F(BrokenInput, NoProfile) {
  Remove(kProfile);
  EXPECT_THAT(Found(),
              testing::IsSupersetOf({testing::HasSubstr("{ombrel}/input/controller_profile.json does not exist"),
                                     testing::HasSubstr("controller_profile.json: is missing"),
                                     testing::HasSubstr("bindings_menus.json: nothing names it")}));
}

TEST_F(BrokenInput, ProfileOfAnotherKind) {
  Edit(kProfile, [](json& profile) { profile["jsonid"] = "input-profile"; });
  ExpectFault("controller_profile.json: \"jsonid\" is wrong");
}

TEST_F(BrokenInput, ControllerTypeThatTheOthersDoNotName) {
  Edit(kProfile, [](json& profile) { profile["controller_type"] = "wand"; });
  ExpectFaults({"bindings_legacy.json: \"controller_type\"", "bindings_menus.json: \"controller_type\"",
                "remapping.json: \"to_controller_type\"", "en_US has no text for wand", "de_DE has no text for wand",
                "en_US has a text for ombrel_controller", "de_DE has a text for ombrel_controller"});
}

TEST_F(BrokenInput, NoLegacyBinding) {
  Edit(kProfile, [](json& profile) { profile.erase("legacy_binding"); });
  ExpectFaults({"\"legacy_binding\" names no file", "bindings_legacy.json: nothing names it"});
}

TEST_F(BrokenInput, RemappingThatDoesNotExist) {
  Edit(kProfile, [](json& profile) { profile["remapping"] = "{ombrel}/input/remap.json"; });
  ExpectFaults({"{ombrel}/input/remap.json does not exist", "remapping.json: nothing names it"});
}

TEST_F(BrokenInput, UnknownModeOfTheBindingPage) {
  Edit(kProfile, [](json& profile) { profile["input_bindingui_mode"] = "both_hands"; });
  ExpectFault("\"input_bindingui_mode\" is wrong");
}

TEST_F(BrokenInput, ImageThatDoesNotExist) {
  Edit(kProfile, [](json& profile) { profile["input_bindingui_left"]["image"] = "{ombrel}/icons/left.png"; });
  ExpectFault("{ombrel}/icons/left.png does not exist");
}

TEST_F(BrokenInput, NoImage) {
  Edit(kProfile, [](json& profile) { profile.erase("input_bindingui_right"); });
  ExpectFault("\"input_bindingui_right\" has no \"image\"");
}

TEST_F(BrokenInput, PointOutsideTheImage) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/grip"]["binding_image_point"] = {512, 4}; });
  ExpectFaults({"/input/grip has no \"binding_image_point\" in the image of \"input_bindingui_left\"",
                "/input/grip has no \"binding_image_point\" in the image of \"input_bindingui_right\""});
}

TEST_F(BrokenInput, NoDefaultBindings) {
  Edit(kProfile, [](json& profile) { profile["default_bindings"] = json::array(); });
  ExpectFaults({"has no \"default_bindings\"", "bindings_menus.json: nothing names it"});
}

TEST_F(BrokenInput, DefaultBindingsOfNoApplication) {
  Edit(kProfile, [](json& profile) { profile["default_bindings"][0].erase("app_key"); });
  ExpectFault("a default binding has no \"app_key\"");
}

TEST_F(BrokenInput, ComponentOfTheControllerMissing) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/trigger"].erase("click"); });
  ExpectFaults({"lacks /input/trigger/click, which a controller has", "click needs click", "click needs click",
                "click needs click", "click needs click"});
}

TEST_F(BrokenInput, ComponentThatNoControllerHas) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/grip"]["touch"] = true; });
  ExpectFault("has /input/grip/touch, which no controller has");
}

TEST_F(BrokenInput, ControllerWithOneMoreComponent) {
  facts.components.insert("/input/trigger/touch");
  ExpectFault("lacks /input/trigger/touch, which a controller has");
}

TEST_F(BrokenInput, NoHapticOutput) {
  Edit(kProfile, [](json& profile) { profile["input_source"].erase("/output/haptic"); });
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("lacks /output/haptic, which a controller has")));
}

TEST_F(BrokenInput, SourceOfAnUnknownType) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/grip"]["type"] = "squeeze"; });
  ExpectFault("/input/grip is of no known type");
}

TEST_F(BrokenInput, PartThatTheTypeHasNot) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/trackpad"]["type"] = "button"; });
  ExpectFaults({"/input/trackpad: a button has no x", "/input/trackpad: a button has no y"});
}

TEST_F(BrokenInput, BindingOfAPathThatIsNotThere) {
  ReplaceText(kMenus, "/user/hand/right/input/grip", "/user/hand/right/input/thumb");
  ExpectFaults({"/user/hand/right/input/thumb is not in the profile", "/input/grip is bound for one hand only",
                "/input/thumb is bound for one hand only"});
}

TEST_F(BrokenInput, BindingForOneHandOnly) {
  Edit(kLegacy, [](json& legacy) { legacy["bindings"]["/actions/legacy"]["sources"].erase(0); });
  ExpectFault("/actions/legacy: /input/system is bound for one hand only");
}

TEST_F(BrokenInput, BindingToAnActionOfAnotherSet) {
  ReplaceText(kMenus, "/actions/lasermouse/in/back", "/actions/laser/in/back");
  ExpectFault("\"/actions/laser/in/back\" is no action of /actions/lasermouse/in/");
}

TEST_F(BrokenInput, HapticsIntoAnInput) {
  ReplaceText(kLegacy, "/actions/legacy/out/left_haptic", "/actions/legacy/in/left_haptic");
  ExpectFault("is no action of /actions/legacy/out/");
}

TEST_F(BrokenInput, HapticsOfSomethingThatDoesNotVibrate) {
  ReplaceText(kLegacy, "/user/hand/left/output/haptic", "/user/hand/left/input/grip");
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("/user/hand/left/input/grip does not vibrate")));
}

TEST_F(BrokenInput, InputThatTheModeHasNot) {
  ReplaceText(kLegacy, "\"pull\"", "\"value\"");
  ExpectFault("/user/hand/left/input/trigger: a trigger has no value");
}

TEST_F(BrokenInput, UnknownPose) {
  ReplaceText(kMenus, "/user/hand/left/pose/tip", "/user/hand/left/pose/top");
  ExpectFaults(
      {"/user/hand/left/pose/top is no pose", "/pose/tip is bound for one hand", "/pose/top is bound for one hand"});
}

TEST_F(BrokenInput, RemappingToAPathThatIsNotThere) {
  ReplaceText(kRemapping, "\"to\": \"/input/grip\"", "\"to\": \"/input/squeeze\"");
  ExpectFault("remapping.json: /input/squeeze is not in the profile");
}

}  // namespace
}  // namespace ombrel::test
