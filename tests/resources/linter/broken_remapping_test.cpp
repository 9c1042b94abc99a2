// The remapping of other controllers' bindings: each test breaks one thing of a sound folder, and the linter names it.
#include "broken_folder.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

class BrokenRemapping : public BrokenFolder {
 protected:
  void EditLayout(std::size_t index, const std::function<void(json&)>& change) const {
    Edit(kRemapping, [&](json& remapping) { change(remapping["layouts"][index]); });
  }

  // In the order of the file.
  static constexpr std::size_t kWand = 0;
  static constexpr std::size_t kKnuckles = 1;
  static constexpr std::size_t kTouch = 2;
  static constexpr std::size_t kSimple = 3;
};

TEST_F(BrokenRemapping, NoLayouts) {
  Edit(kRemapping, [](json& remapping) { remapping.erase("layouts"); });
  ExpectFault("remapping.json: has no \"layouts\"");
}

TEST_F(BrokenRemapping, LayoutsUnderAnotherName) {
  ReplaceText(kRemapping, "\"layouts\"", "\"mappings\"");
  ExpectFaults({"has no \"layouts\"", "has \"mappings\", which the runtime does not know"});
}

TEST_F(BrokenRemapping, LayoutMissing) {
  Edit(kRemapping, [](json& remapping) { remapping["layouts"].erase(kSimple); });
  ExpectFault("has no layout from khr_simple_controller with a \"priority\"");
}

TEST_F(BrokenRemapping, LayoutWithoutAPriority) {
  EditLayout(kKnuckles, [](json& layout) { layout.erase("priority"); });
  ExpectFault("has no layout from knuckles with a \"priority\"");
}

TEST_F(BrokenRemapping, LayoutThatComesTwice) {
  Edit(kRemapping, [](json& remapping) { remapping["layouts"].push_back(remapping["layouts"][kWand]); });
  ExpectFault("has two layouts from vive_controller");
}

TEST_F(BrokenRemapping, OtherControllersBeforeTheWand) {
  EditLayout(kWand, [](json& layout) { layout["priority"] = 95; });
  ExpectFault("knuckles does not come after the types that are more like ours");
}

TEST_F(BrokenRemapping, TwoLayoutsOfOnePriority) {
  EditLayout(kTouch, [](json& layout) { layout["priority"] = 100; });
  ExpectFault("oculus_touch does not come after the types that are more like ours");
}

TEST_F(BrokenRemapping, LayoutFromATypeThatIsNotBuiltIn) {
  Edit(kRemapping, [](json& remapping) {
    remapping["layouts"].push_back(remapping["layouts"][kWand]);
    remapping["layouts"].back()["from_controller_type"] = "gamepad";
  });
  ExpectFault("a layout is from \"gamepad\", which is not built in");
}

TEST_F(BrokenRemapping, KeyOfALayoutThatTheRuntimeDoesNotKnow) {
  EditLayout(kWand, [](json& layout) { layout["simulate_hmd"] = true; });
  ExpectFault("has \"simulate_hmd\", which the runtime does not know");
}

TEST_F(BrokenRemapping, SimpleControllerThatIsSimulated) {
  EditLayout(kSimple, [](json& layout) { layout.erase("simulate_HMD"); });
  ExpectFault("the layout from khr_simple_controller \"simulate_HMD\" is wrong");
}

TEST_F(BrokenRemapping, WandThatIsNotSimulated) {
  EditLayout(kWand, [](json& layout) { layout["simulate_controller_type"] = false; });
  ExpectFault("the layout from vive_controller \"simulate_controller_type\" is wrong");
}

TEST_F(BrokenRemapping, NoListOfSteps) {
  EditLayout(kWand, [](json& layout) { layout.erase("autoremappings"); });
  ExpectFault("the layout from vive_controller has no list of \"autoremappings\"");
}

TEST_F(BrokenRemapping, KeyOfAStepThatTheRuntimeDoesNotKnow) {
  EditLayout(kKnuckles, [](json& layout) { layout["autoremappings"][0]["mirrored"] = true; });
  ExpectFault("has \"mirrored\", which the runtime does not know");
}

TEST_F(BrokenRemapping, PathsWithoutAHand) {
  EditLayout(kSimple, [](json& layout) {
    layout["autoremappings"][0] = {{"from", "/input/select"}, {"to", "/input/trigger"}};
  });
  ExpectFaults({"converts to \"/input/trigger\"", "mirrors /input/select, which is not of the right hand",
                "converts /input/select, which is not there", "does not convert /user/hand/left/input/select",
                "does not convert /user/hand/right/input/select"});
}

TEST_F(BrokenRemapping, StepToAPathThatIsNotThere) {
  ReplaceText(kRemapping, "\"to\": \"/user/hand/right/input/grip\"", "\"to\": \"/user/hand/right/input/squeeze\"");
  ExpectFault("the layout from knuckles converts to \"/user/hand/right/input/squeeze\"");
}

TEST_F(BrokenRemapping, StepToAnOutput) {
  ReplaceText(kRemapping, "\"to\": \"/user/hand/right/input/grip\"", "\"to\": \"/user/hand/right/output/haptic\"");
  ExpectFault("the layout from knuckles converts to \"/user/hand/right/output/haptic\"");
}

TEST_F(BrokenRemapping, StepFromAPathThatIsNotThere) {
  EditLayout(kKnuckles, [](json& layout) { layout["autoremappings"][0]["from"] = "/user/hand/right/input/squeeze"; });
  ExpectFaults({"converts /user/hand/left/input/squeeze", "converts /user/hand/right/input/squeeze",
                "does not convert /user/hand/left/input/grip", "does not convert /user/hand/right/input/grip"});
}

TEST_F(BrokenRemapping, StepForOneHandOnly) {
  EditLayout(kKnuckles, [](json& layout) { layout["autoremappings"][0]["mirror"] = false; });
  ExpectFault("the layout from knuckles does not convert /user/hand/left/input/grip");
}

TEST_F(BrokenRemapping, MirrorOfAButtonThatOneHandHas) {
  EditLayout(kTouch, [](json& layout) { layout["autoremappings"][3].erase("mirror"); });
  ExpectFault("the layout from oculus_touch converts /user/hand/left/input/a, which is not there");
}

TEST_F(BrokenRemapping, MirrorOfTheLeftHand) {
  EditLayout(kTouch, [](json& layout) { layout["autoremappings"][5].erase("mirror"); });
  ExpectFault("the layout from oculus_touch mirrors /user/hand/left/input/x, which is not of the right hand");
}

TEST_F(BrokenRemapping, StepAcrossTheHands) {
  EditLayout(kTouch,
             [](json& layout) { layout["autoremappings"][5]["to"] = "/user/hand/right/input/application_menu"; });
  ExpectFault("the layout from oculus_touch converts /user/hand/left/input/x across the hands");
}

}  // namespace
}  // namespace ombrel::test
