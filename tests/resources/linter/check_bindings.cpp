#include <map>
#include <regex>

#include "input_profile.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

// What an input of a mode takes from its source.
using Needs = std::map<std::string, std::set<std::string>>;

const std::map<std::string, Needs>& NeedsOfModes() {
  static const std::map<std::string, Needs> kNeeds = {
      {"button", {{"click", {"click"}}, {"touch", {"touch"}}}},
      {"trigger", {{"click", {"click"}}, {"touch", {"touch"}}, {"pull", {"value"}}}},
      {"trackpad", {{"click", {"click"}}, {"touch", {"touch"}}, {"position", {"x", "y"}}}},
      {"scroll", {{"scroll", {"x", "y", "touch"}}}}};
  return kNeeds;
}

class BindingsCheck {
 public:
  BindingsCheck(const DriverFiles& files, const InputProfile& profile, std::string file, Findings& findings)
      : document_(files.Document(file)), profile_(profile), file_(std::move(file)), findings_(findings) {}

  void Run() {
    if (TextAt(document_, "controller_type") != profile_.ControllerType()) {
      Complain("\"controller_type\" is not the profile's");
    }
    const json bindings = document_.is_object() ? document_.value("bindings", json()) : json();
    if (!bindings.is_object() || bindings.empty()) return Complain("binds nothing");
    for (const auto& [set, bound] : bindings.items()) {
      if (!set.starts_with("/actions/")) Complain(set + " is no set of actions");
      for (const json& source : bound.value("sources", json::array())) CheckSource(set, source);
      for (const json& haptic : bound.value("haptics", json::array())) CheckHaptic(set, haptic);
      for (const json& pose : bound.value("poses", json::array())) CheckPose(set, pose);
      CheckBothHands(set, bound);
    }
  }

 private:
  void Complain(const std::string& what) { findings_.push_back(file_ + ": " + what); }

  // "/input/grip" of "/user/hand/left/input/grip"; empty when it is no path of a hand.
  static std::string WithoutHand(const std::string& path) {
    std::smatch match;
    return std::regex_match(path, match, std::regex("/user/hand/(?:left|right)(/.+)")) ? match[1].str() : "";
  }

  void CheckOutput(const std::string& set, const std::string& direction, const json& holder) {
    const std::string output = TextAt(holder, "output");
    if (!output.starts_with(set + direction)) Complain("\"" + output + "\" is no action of " + set + direction);
  }

  void CheckSource(const std::string& set, const json& source) {
    const std::string path = TextAt(source, "path");
    const json made = profile_.Source(WithoutHand(path));
    if (made.empty()) return Complain(path + " is not in the profile");
    const auto mode = NeedsOfModes().find(TextAt(source, "mode"));
    if (mode == NeedsOfModes().end()) return Complain(path + " has no known \"mode\"");
    const json inputs = source.value("inputs", json());
    if (!inputs.is_object() || inputs.empty()) return Complain(path + " has no \"inputs\"");
    for (const auto& [input, holder] : inputs.items()) {
      CheckOutput(set, "/in/", holder);
      const auto needs = mode->second.find(input);
      if (needs == mode->second.end()) {
        Complain(path + ": a " + mode->first + " has no " + input);
        continue;
      }
      for (const std::string& part : needs->second) {
        if (made.value(part, json()) != true) Complain(path + ": " + input + " needs " + part + ", which is not there");
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
    const std::regex known("/user/hand/(left|right)/pose/(raw|tip|base|handgrip)");
    if (!std::regex_match(path, known)) Complain(path + " is no pose");
    CheckOutput(set, "/in/", pose);
  }

  void CheckBothHands(const std::string& set, const json& bound) {
    std::map<std::string, int> balance;
    for (const auto& [kind, list] : bound.items()) {
      for (const json& entry : list) {
        const std::string path = TextAt(entry, "path");
        balance[WithoutHand(path)] += path.starts_with("/user/hand/left/") ? 1 : -1;
      }
    }
    for (const auto& [path, difference] : balance) {
      if (difference != 0) Complain(set + ": " + path + " is bound for one hand only");
    }
  }

  const json& document_;
  const InputProfile& profile_;
  const std::string file_;
  Findings& findings_;
};

void CheckRemapping(const DriverFiles& files, const InputProfile& profile, const std::string& file,
                    Findings& findings) {
  const json& document = files.Document(file);
  if (TextAt(document, "to_controller_type") != profile.ControllerType()) {
    findings.push_back(file + ": \"to_controller_type\" is not the profile's");
  }
  const json mappings = document.is_object() ? document.value("mappings", json::array()) : json::array();
  for (const json& mapping : mappings) {
    for (const json& step : mapping.value("autoremappings", json::array())) {
      const std::string to = TextAt(step, "to");
      if (!profile.Paths().contains(to)) findings.push_back(file + ": " + to + " is not in the profile");
    }
  }
}

}  // namespace

void CheckBindings(const DriverFiles& files, const SourceFacts& facts, Findings& findings) {
  const InputProfile profile(files, facts);
  if (!profile.Document().is_object()) return;
  std::set<std::string> references = {TextAt(profile.Document(), "legacy_binding")};
  for (const json& binding : profile.Document().value("default_bindings", json::array())) {
    references.insert(TextAt(binding, "binding_url"));
  }
  for (const std::string& reference : references) {
    const auto file = files.Resolve(reference);
    if (file && files.Has(*file)) BindingsCheck(files, profile, *file, findings).Run();
  }
  const auto remapping = files.Resolve(TextAt(profile.Document(), "remapping"));
  if (remapping && files.Has(*remapping)) CheckRemapping(files, profile, *remapping, findings);
}

}  // namespace ombrel::test
