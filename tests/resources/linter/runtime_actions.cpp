#include "runtime_actions.h"

#include <vector>

namespace ombrel::test {
namespace {

using Names = std::vector<std::string>;

void Add(RuntimeActions& actions, const std::string& set, const Names& needed, const Names& others) {
  for (const std::string& name : needed) actions.needed.insert("/actions/" + set + "/" + name);
  actions.known.insert(actions.needed.begin(), actions.needed.end());
  for (const std::string& name : others) actions.known.insert("/actions/" + set + "/" + name);
}

RuntimeActions MakeMenuActions() {
  RuntimeActions actions;
  Add(actions, "lasermouse",
      {"in/pointer", "in/leftclick", "in/rightclick", "in/home", "in/back", "in/lockmouseposition", "out/haptic"},
      {"in/middleclick", "in/enter", "in/moveup", "in/movedown", "in/moveleft", "in/moveright", "in/trackpadtouch",
       "in/trackpadvalue", "in/switchgamepadfocus"});
  Add(actions, "lasermouse_secondary", {"in/switchlaserhand"}, {});
  Add(actions, "scroll_discrete", {"in/scroll"}, {});
  Add(actions, "scroll_smooth", {"in/scroll"}, {});
  Add(actions, "system", {"in/toggledashboard", "in/toggleroomview", "in/takescreenshot", "in/systembuttonchord"},
      {"in/opendashboard", "in/closedashboard", "in/volumeup", "in/volumedown", "in/mutemicrophone"});
  Add(actions, "dualanalog",
      {"in/leftvalue", "in/rightvalue", "in/lefttouch", "in/righttouch", "in/leftclick", "in/rightclick"},
      {"in/modeswitch1", "in/modeswitch2", "in/cancel"});
  Add(actions, "locomotion", {}, {"in/movement", "in/rotation"});
  for (const char* way : {"click", "touch", "trigger"}) {
    Add(actions, std::string("quickmouse_") + way, {}, {"in/activatequickmouse"});
  }
  Add(actions, "quickrecenter", {}, {"in/recenter"});
  Add(actions, "roomsetup_floor", {}, {"in/floorfineadjust"});
  return actions;
}

RuntimeActions MakeLegacyActions() {
  RuntimeActions actions;
  for (const std::string side : {"left", "right"}) {
    const std::string in = "in/" + side + "_";
    Add(actions, "legacy",
        {in + "system_press", in + "applicationmenu_press", in + "grip_press", in + "axis0_press", in + "axis0_touch",
         in + "axis0_value", in + "axis1_press", in + "axis1_touch", in + "axis1_value", in + "pose",
         "out/" + side + "_haptic"},
        {in + "system_touch", in + "applicationmenu_touch", in + "grip_touch", in + "a_press", in + "a_touch"});
    for (const char* axis : {"axis2", "axis3", "axis4"}) {
      Add(actions, "legacy", {}, {in + axis + "_press", in + axis + "_touch", in + axis + "_value"});
    }
  }
  return actions;
}

}  // namespace

const RuntimeActions& MenuActions() {
  static const RuntimeActions kActions = MakeMenuActions();
  return kActions;
}

const RuntimeActions& LegacyActions() {
  static const RuntimeActions kActions = MakeLegacyActions();
  return kActions;
}

}  // namespace ombrel::test
