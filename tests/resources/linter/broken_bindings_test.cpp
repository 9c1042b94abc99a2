// The bindings for menus and for applications without actions: each test breaks one thing of a sound folder, and the
// linter names it.
#include "broken_folder.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

using BrokenBindings = BrokenFolder;

TEST_F(BrokenBindings, NoBindings) {
  Edit(kMenus, [](json& menus) { menus["bindings"] = json::object(); });
  ExpectFault("bindings_menus.json: binds nothing");
}

TEST_F(BrokenBindings, SourceWithoutInputs) {
  Edit(kMenus, [](json& menus) { menus["bindings"]["/actions/system"]["sources"][0].erase("inputs"); });
  ExpectFault("/user/hand/left/input/system has no \"inputs\"");
}

TEST_F(BrokenBindings, BindingOfAPathThatIsNotThere) {
  ReplaceText(kMenus, "/user/hand/right/input/grip", "/user/hand/right/input/thumb");
  ExpectFaults({"/user/hand/right/input/thumb is not in the profile", "/input/grip is bound for one hand only",
                "/input/thumb is bound for one hand only"});
}

TEST_F(BrokenBindings, BindingForOneHandOnly) {
  Edit(kLegacy, [](json& legacy) { legacy["bindings"]["/actions/legacy"]["sources"].erase(0); });
  ExpectFaults({"/actions/legacy: /input/system is bound for one hand only",
                "binds nothing to /actions/legacy/in/left_system_press"});
}

TEST_F(BrokenBindings, BindingToAnActionOfAnotherSet) {
  ReplaceText(kMenus, "/actions/lasermouse/in/back", "/actions/system/in/back");
  ExpectFault("\"/actions/system/in/back\" is no action of /actions/lasermouse/in/");
}

TEST_F(BrokenBindings, HapticsIntoAnInput) {
  ReplaceText(kLegacy, "/actions/legacy/out/left_haptic", "/actions/legacy/in/left_haptic");
  ExpectFaults({"is no action of /actions/legacy/out/", "binds nothing to /actions/legacy/out/left_haptic"});
}

TEST_F(BrokenBindings, HapticsOfSomethingThatDoesNotVibrate) {
  ReplaceText(kLegacy, "/user/hand/left/output/haptic", "/user/hand/left/input/grip");
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("/user/hand/left/input/grip does not vibrate")));
}

TEST_F(BrokenBindings, InputThatTheModeHasNot) {
  ReplaceText(kLegacy, "\"pull\"", "\"value\"");
  ExpectFault("/user/hand/left/input/trigger: a trigger has no value");
}

TEST_F(BrokenBindings, ModeThatTheRuntimeLacks) {
  ReplaceText(kMenus, "\"dpad_click\"", "\"dpad\"");
  ExpectFault("/user/hand/left/input/trackpad has no known \"mode\"");
}

TEST_F(BrokenBindings, SideOfTheTrackpadThatTheModeLacks) {
  ReplaceText(kMenus, "\"east\"", "\"right\"");
  ExpectFault("/user/hand/left/input/trackpad: a dpad_click has no right");
}

TEST_F(BrokenBindings, PoseThatTheProfileLacks) {
  Edit(kMenus, [](json& menus) {
    for (json& pose : menus["bindings"]["/actions/lasermouse"]["poses"]) {
      pose["path"] = pose["path"].get<std::string>() + "_end";
    }
  });
  ExpectFaults({"/user/hand/left/pose/tip_end is no pose of the profile",
                "/user/hand/right/pose/tip_end is no pose of the profile"});
}

TEST_F(BrokenBindings, ActionThatTheRuntimeLacks) {
  ReplaceText(kMenus, "/actions/lasermouse/in/back", "/actions/lasermouse/in/scroll");
  ExpectFault("\"/actions/lasermouse/in/scroll\" is no action that the runtime knows");
}

TEST_F(BrokenBindings, ActionOfAnotherApplication) {
  ReplaceText(kLegacy, "\"/actions/legacy\"", "\"/actions/system\"");
  EXPECT_THAT(Found(), testing::Contains(testing::HasSubstr("is no action of /actions/system/in/")));
}

TEST_F(BrokenBindings, ActionsInAnyCaseAreNoFault) {
  ReplaceText(kMenus, "/actions/lasermouse/in/leftclick", "/actions/lasermouse/in/LeftClick");
  ReplaceText(kLegacy, "/actions/legacy/in/left_axis1_touch", "/actions/legacy/in/Left_Axis1_Touch");
  ExpectFaults({});
}

TEST_F(BrokenBindings, MenuThatCannotBeOpened) {
  Edit(kMenus, [](json& menus) {
    for (json& source : menus["bindings"]["/actions/system"]["sources"]) source["inputs"].erase("click");
  });
  ExpectFault("binds nothing to /actions/system/in/toggledashboard");
}

TEST_F(BrokenBindings, LaserThatCannotChangeHands) {
  Edit(kMenus, [](json& menus) { menus["bindings"].erase("/actions/lasermouse_secondary"); });
  ExpectFault("binds nothing to /actions/lasermouse_secondary/in/switchlaserhand");
}

TEST_F(BrokenBindings, LegacyTriggerThatCannotBeTouched) {
  Edit(kLegacy, [](json& legacy) {
    for (json& source : legacy["bindings"]["/actions/legacy"]["sources"]) source["inputs"].erase("touch");
  });
  ExpectFaults({"legacy/in/left_axis0_touch", "legacy/in/left_axis1_touch", "legacy/in/right_axis0_touch",
                "legacy/in/right_axis1_touch"});
}

TEST_F(BrokenBindings, ScrollingInTheOtherSetsSteps) {
  ReplaceText(kMenus, "\"scroll_mode\": \"smooth\"", "\"scroll_mode\": \"discrete\"");
  ExpectFault("/user/hand/left/input/trackpad: \"scroll_mode\" is not that of /actions/scroll_smooth");
}

TEST_F(BrokenBindings, ScrollingInNoSteps) {
  ReplaceText(kMenus, "\"scroll_mode\": \"discrete\"", "");
  ExpectFault("/user/hand/left/input/trackpad: \"scroll_mode\" is not that of /actions/scroll_discrete");
}

TEST_F(BrokenBindings, ParameterThatNoModeHas) {
  ReplaceText(kMenus, "\"scroll_mode\": \"discrete\"", "\"scroll_mode\": \"discrete\", \"scroll_speed\": \"2\"");
  ExpectFault("/user/hand/left/input/trackpad: no mode has \"scroll_speed\"");
}

TEST_F(BrokenBindings, TriggerThatIsReleasedBeforeItIsPressed) {
  ReplaceText(kMenus, "\"click_deactivate_threshold\": \"0.6\"", "\"click_deactivate_threshold\": \"0.7\"");
  ExpectFault("/user/hand/left/input/trigger: is not pressed at a threshold and released at a lighter one");
}

TEST_F(BrokenBindings, ChordOfOneInput) {
  Edit(kMenus, [](json& menus) {
    for (json& chord : menus["bindings"]["/actions/system"]["chords"]) chord["inputs"].erase(0);
  });
  ExpectFaults({"the chord of /actions/system/in/takescreenshot has fewer than two inputs",
                "the chord of /actions/system/in/takescreenshot has fewer than two inputs"});
}

TEST_F(BrokenBindings, ChordOfAPathWithoutItsInput) {
  ReplaceText(kMenus, "[\"/user/hand/left/input/system\", \"held\"]", "[\"/user/hand/left/input/system\"]");
  ExpectFault("the chord of /actions/system/in/takescreenshot has an input that is not a path and its input");
}

TEST_F(BrokenBindings, ChordForOneHandOnly) {
  Edit(kMenus, [](json& menus) { menus["bindings"]["/actions/system"]["chords"].erase(0); });
  ExpectFaults({"/actions/system: /input/system is bound for one hand only",
                "/actions/system: /input/trigger is bound for one hand only"});
}

TEST_F(BrokenBindings, ChordOfAnInputThatIsNotThere) {
  ReplaceText(kMenus, "\"/user/hand/left/input/system\", \"held\"", "\"/user/hand/left/input/system\", \"pull\"");
  ExpectFault("/user/hand/left/input/system: a button has no pull");
}

}  // namespace
}  // namespace ombrel::test
