#pragma once

#include <set>
#include <string>

namespace ombrel::test {

// The actions of an application that bindings are written for: "/actions/system/in/toggledashboard". The runtime ignores
// case and binds nothing to a name that it does not know; all names here are in lower case.
struct RuntimeActions {
  std::set<std::string> needed;  // the runtime demands them, or its own binding for a wand has them
  std::set<std::string> known;   // these, and all others
};

// The runtime's compositor, with the laser mouse, the dashboard and the keyboard.
inline constexpr const char* kMenusAppKey = "openvr.component.vrcompositor";
[[nodiscard]] const RuntimeActions& MenuActions();

// Applications that read buttons and axes.
[[nodiscard]] const RuntimeActions& LegacyActions();

}  // namespace ombrel::test
