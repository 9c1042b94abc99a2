// The input profile: each test breaks one thing of a sound folder, and the linter names it.
#include "broken_folder.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

using BrokenProfile = BrokenFolder;

TEST_F(BrokenProfile, NoProfile) {
  Remove(kProfile);
  EXPECT_THAT(Found(),
              testing::IsSupersetOf({testing::HasSubstr("{ombrel}/input/controller_profile.json does not exist"),
                                     testing::HasSubstr("controller_profile.json: is missing"),
                                     testing::HasSubstr("bindings_menus.json: nothing names it")}));
}

TEST_F(BrokenProfile, ProfileOfAnotherKind) {
  Edit(kProfile, [](json& profile) { profile["jsonid"] = "input-profile"; });
  ExpectFault("controller_profile.json: \"jsonid\" is wrong");
}

TEST_F(BrokenProfile, ControllerTypeThatTheOthersDoNotName) {
  Edit(kProfile, [](json& profile) { profile["controller_type"] = "wand"; });
  ExpectFaults({"bindings_legacy.json: \"controller_type\"", "bindings_menus.json: \"controller_type\"",
                "remapping.json: \"to_controller_type\"", "en_US has no text for wand", "de_DE has no text for wand",
                "en_US has a text for ombrel_controller", "de_DE has a text for ombrel_controller"});
}

TEST_F(BrokenProfile, NoLegacyBinding) {
  Edit(kProfile, [](json& profile) { profile.erase("legacy_binding"); });
  ExpectFaults({"\"legacy_binding\" names no file", "bindings_legacy.json: nothing names it"});
}

TEST_F(BrokenProfile, RemappingThatDoesNotExist) {
  Edit(kProfile, [](json& profile) { profile["remapping"] = "{ombrel}/input/remap.json"; });
  ExpectFaults({"{ombrel}/input/remap.json does not exist", "remapping.json: nothing names it"});
}

TEST_F(BrokenProfile, UnknownModeOfTheBindingPage) {
  Edit(kProfile, [](json& profile) { profile["input_bindingui_mode"] = "both_hands"; });
  ExpectFault("\"input_bindingui_mode\" is wrong");
}

TEST_F(BrokenProfile, ImageThatDoesNotExist) {
  Edit(kProfile, [](json& profile) { profile["input_bindingui_left"]["image"] = "{ombrel}/icons/left.png"; });
  ExpectFault("{ombrel}/icons/left.png does not exist");
}

TEST_F(BrokenProfile, NoImage) {
  Edit(kProfile, [](json& profile) { profile.erase("input_bindingui_right"); });
  ExpectFault("\"input_bindingui_right\" has no \"image\"");
}

TEST_F(BrokenProfile, PointOutsideTheImage) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/grip"]["binding_image_point"] = {512, 4}; });
  ExpectFaults({"/input/grip has no \"binding_image_point\" in the image of \"input_bindingui_left\"",
                "/input/grip has no \"binding_image_point\" in the image of \"input_bindingui_right\""});
}

TEST_F(BrokenProfile, NoDefaultBindings) {
  Edit(kProfile, [](json& profile) { profile["default_bindings"] = json::array(); });
  ExpectFaults({"has no \"default_bindings\"", "bindings_menus.json: nothing names it"});
}

TEST_F(BrokenProfile, DefaultBindingsOfNoApplication) {
  Edit(kProfile, [](json& profile) { profile["default_bindings"][0].erase("app_key"); });
  ExpectFault("a default binding's \"app_key\" is not openvr.component.vrcompositor");
}

TEST_F(BrokenProfile, DefaultBindingsNamedAsOtherFilesAre) {
  const std::string url = "{ombrel}/input/bindings_menus.json";
  Edit(kProfile, [&](json& profile) { profile["default_bindings"][0]["binding_url"] = url; });
  ExpectFault("\"" + url + "\" is no file beside it");
}

TEST_F(BrokenProfile, TypeToTakeTheControllerFor) {
  Edit(kProfile, [](json& profile) { profile["compatibility_mode_controller_type"] = "vive_controller"; });
  ExpectFault("\"compatibility_mode_controller_type\" is ignored beside \"remapping\"");
}

TEST_F(BrokenProfile, ComponentOfTheControllerMissing) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/grip"].erase("click"); });
  ExpectFaults({"lacks /input/grip/click, which a controller has", "click needs click", "click needs click",
                "click needs click", "click needs click"});
}

TEST_F(BrokenProfile, ComponentThatNoControllerHas) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/grip"]["touch"] = true; });
  ExpectFault("has /input/grip/touch, which no controller has");
}

TEST_F(BrokenProfile, ControllerWithOneMoreComponent) {
  facts.components.insert("/input/trigger/touch");
  ExpectFault("lacks /input/trigger/touch, which a controller has");
}

TEST_F(BrokenProfile, NoHapticOutput) {
  Edit(kProfile, [](json& profile) { profile["input_source"].erase("/output/haptic"); });
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("lacks /output/haptic, which a controller has")));
}

TEST_F(BrokenProfile, SourceOfAnUnknownType) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/grip"]["type"] = "squeeze"; });
  ExpectFault("/input/grip is of no known type");
}

TEST_F(BrokenProfile, HapticOutputOfTheTypeThatTheDocumentationNames) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/output/haptic"]["type"] = "haptic"; });
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("/output/haptic is of no known type")));
}

TEST_F(BrokenProfile, PoseMissing) {
  Edit(kProfile, [](json& profile) { profile["input_source"].erase("/pose/front"); });
  ExpectFault("lacks /pose/front, which the render model has");
}

TEST_F(BrokenProfile, PoseThatTheRenderModelLacks) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/pose/back"] = profile["input_source"]["/pose/front"]; });
  ExpectFault("has /pose/back, which the render model lacks");
}

TEST_F(BrokenProfile, PoseOfAnotherType) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/pose/front"]["type"] = "button"; });
  ExpectFault("/pose/front is of the wrong type");
}

TEST_F(BrokenProfile, PartThatTheTypeHasNot) {
  Edit(kProfile, [](json& profile) { profile["input_source"]["/input/trackpad"]["type"] = "button"; });
  ExpectFaults({"/input/trackpad: a button has no x", "/input/trackpad: a button has no y"});
}

}  // namespace
}  // namespace ombrel::test
