#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>

#include "input_profile.h"
#include "runtime_actions.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

// What an input of a mode takes from its source.
using Needs = std::map<std::string, std::set<std::string>>;

const std::map<std::string, Needs>& NeedsOfModes() {
  static const std::map<std::string, Needs> kNeeds = {
      {"button", {{"click", {"click"}}, {"touch", {"touch"}}, {"held", {"click"}}, {"double", {"click"}}}},
      // The runtime's own binding for a wand takes touch from a trigger that has only a click and a value.
      {"trigger", {{"click", {"click"}}, {"touch", {"value"}}, {"pull", {"value"}}}},
      {"trackpad", {{"click", {"click"}}, {"touch", {"touch"}}, {"position", {"x", "y"}}}},
      {"dpad_click",
       {{"north", {"x", "y", "click"}},
        {"south", {"x", "y", "click"}},
        {"east", {"x", "y", "click"}},
        {"west", {"x", "y", "click"}}}},
      {"scroll", {{"scroll", {"x", "y", "touch"}}}}};
  return kNeeds;
}

constexpr const char* kActivate = "click_activate_threshold";
constexpr const char* kDeactivate = "click_deactivate_threshold";
constexpr const char* kScrollMode = "scroll_mode";

std::string LowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

bool IsPairOfTexts(const json& value) {
  return value.is_array() && value.size() == 2 && value[0].is_string() && value[1].is_string();
}

class BindingsCheck {
 public:
  BindingsCheck(const DriverFiles& files, const InputProfile& profile, const RuntimeActions& actions, std::string file,
                Findings& findings)
      : document_(files.Document(file)),
        profile_(profile),
        actions_(actions),
        file_(std::move(file)),
        findings_(findings) {}

  void Run() {
    if (TextAt(document_, "controller_type") != profile_.ControllerType()) {
      Complain("\"controller_type\" is not the profile's");
    }
    const json bindings = document_.is_object() ? document_.value("bindings", json()) : json();
    if (!bindings.is_object() || bindings.empty()) return Complain("binds nothing");
    for (const auto& [set, bound] : bindings.items()) {
      for (const json& source : bound.value("sources", json::array())) CheckSource(set, source);
      for (const json& chord : bound.value("chords", json::array())) CheckChord(set, chord);
      for (const json& haptic : bound.value("haptics", json::array())) CheckHaptic(set, haptic);
      for (const json& pose : bound.value("poses", json::array())) CheckPose(set, pose);
      CheckBothHands(set, bound);
    }
    for (const std::string& action : actions_.needed) {
      if (!bound_.contains(action)) Complain("binds nothing to " + action);
    }
  }

 private:
  void Complain(const std::string& what) { findings_.push_back(file_ + ": " + what); }

  void CheckOutput(const std::string& set, const std::string& direction, const json& holder) {
    const std::string output = TextAt(holder, "output");
    if (!output.starts_with(set + direction)) {
      Complain("\"" + output + "\" is no action of " + set + direction);
    } else if (!actions_.known.contains(LowerCase(output))) {
      Complain("\"" + output + "\" is no action that the runtime knows");
    }
    bound_.insert(LowerCase(output));
  }

  void CheckSource(const std::string& set, const json& source) {
    const std::string path = TextAt(source, "path");
    const std::string mode = TextAt(source, "mode");
    if (!NeedsOfModes().contains(mode)) return Complain(path + " has no known \"mode\"");
    const json inputs = source.value("inputs", json());
    if (!inputs.is_object() || inputs.empty()) return Complain(path + " has no \"inputs\"");
    for (const auto& [input, holder] : inputs.items()) {
      CheckOutput(set, "/in/", holder);
      CheckInput(path, mode, input);
    }
    CheckParameters(set, source);
  }

  // Whether the source can give this input in this mode.
  void CheckInput(const std::string& path, const std::string& mode, const std::string& input) {
    const json made = profile_.Source(WithoutHand(path));
    if (made.empty()) return Complain(path + " is not in the profile");
    const Needs& inputs = NeedsOfModes().at(mode);
    const auto needs = inputs.find(input);
    if (needs == inputs.end()) return Complain(path + ": a " + mode + " has no " + input);
    for (const std::string& part : needs->second) {
      if (made.value(part, json()) != true) Complain(path + ": " + input + " needs " + part + ", which is not there");
    }
  }

  void CheckParameters(const std::string& set, const json& source) {
    const std::string path = TextAt(source, "path");
    const json parameters = source.value("parameters", json::object());
    for (const auto& [key, value] : parameters.items()) {
      if (key != kActivate && key != kDeactivate && key != kScrollMode)
        Complain(path + ": no mode has \"" + key + "\"");
    }
    const bool scrolls = TextAt(source, "mode") == "scroll";
    if (scrolls && set != "/actions/scroll_" + TextAt(parameters, kScrollMode)) {
      Complain(path + ": \"scroll_mode\" is not that of " + set);
    }
    if (!parameters.contains(kActivate) && !parameters.contains(kDeactivate)) return;
    const double activate = std::strtod(TextAt(parameters, kActivate).c_str(), nullptr);
    const double deactivate = std::strtod(TextAt(parameters, kDeactivate).c_str(), nullptr);
    if (!(0 < deactivate && deactivate < activate && activate < 1)) {
      Complain(path + ": is not pressed at a threshold and released at a lighter one");
    }
  }

  // An action of several inputs at once; each is the path of a button and one of its inputs.
  void CheckChord(const std::string& set, const json& chord) {
    CheckOutput(set, "/in/", chord);
    const std::string name = "the chord of " + TextAt(chord, "output");
    const json inputs = chord.value("inputs", json::array());
    if (inputs.size() < 2) Complain(name + " has fewer than two inputs");
    for (const json& input : inputs) {
      if (IsPairOfTexts(input)) {
        CheckInput(input[0], "button", input[1]);
      } else {
        Complain(name + " has an input that is not a path and its input");
      }
    }
  }

  void CheckHaptic(const std::string& set, const json& haptic) {
    const std::string path = TextAt(haptic, "path");
    if (TextAt(profile_.Source(WithoutHand(path)), "type") != "vibration") Complain(path + " does not vibrate");
    CheckOutput(set, "/out/", haptic);
  }

  void CheckPose(const std::string& set, const json& pose) {
    const std::string path = TextAt(pose, "path");
    if (TextAt(profile_.Source(WithoutHand(path)), "type") != "pose") Complain(path + " is no pose of the profile");
    CheckOutput(set, "/in/", pose);
  }

  // Sources, poses, haptics and the inputs of chords all name their paths in full.
  void CheckBothHands(const std::string& set, const json& bound) {
    std::map<std::string, int> balance;
    for (const json& value : bound.flatten()) {
      const std::string path = value.is_string() ? value.get<std::string>() : "";
      if (!WithoutHand(path).empty()) balance[WithoutHand(path)] += path.starts_with("/user/hand/left/") ? 1 : -1;
    }
    for (const auto& [path, difference] : balance) {
      if (difference != 0) Complain(set + ": " + path + " is bound for one hand only");
    }
  }

  const json& document_;
  const InputProfile& profile_;
  const RuntimeActions& actions_;
  const std::string file_;
  Findings& findings_;
  std::set<std::string> bound_;  // the actions, in lower case
};

}  // namespace

void CheckBindings(const DriverFiles& files, const SourceFacts& facts, Findings& findings) {
  const InputProfile profile(files, facts);
  const auto check = [&](const std::string& file, const RuntimeActions& actions) {
    if (files.Has(file)) BindingsCheck(files, profile, actions, file, findings).Run();
  };
  check(files.Resolve(TextAt(profile.Document(), "legacy_binding")).value_or(""), LegacyActions());
  for (const std::string& file : profile.DefaultBindings()) check(file, MenuActions());
}

}  // namespace ombrel::test
