// How the runtime turns bindings that were written for another controller into bindings for ours. What it refuses here
// leaves applications that have no binding for ours without any input.
#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "input_profile.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

constexpr const char* kSimulations[] = {"simulate_controller_type", "simulate_render_model", "simulate_HMD"};

// A controller that the runtime can convert from by itself.
struct BuiltInType {
  std::string name;
  bool isSimulated;
  // The inputs that are not the same as ours, by the hands that have them. Those that are the same need no entry.
  std::vector<std::string> both, left, right;
};

// The ones that are most like ours come first.
const std::vector<BuiltInType>& BuiltInTypes() {
  static const std::vector<BuiltInType> kTypes = {
      {"vive_controller", true, {}, {}, {}},
      {"knuckles", true, {"grip", "trigger", "pinch", "thumbstick", "a", "b"}, {}, {}},
      {"oculus_touch", true, {"grip", "trigger", "joystick"}, {"x", "y"}, {"a", "b"}},
      {"khr_simple_controller", false, {"select", "menu"}, {}, {}}};
  return kTypes;
}

const std::string kLeftInput = "/user/hand/left/input/";
const std::string kRightInput = "/user/hand/right/input/";

std::set<std::string> InputsToConvert(const BuiltInType& type) {
  std::set<std::string> inputs;
  for (const std::string& name : type.both) inputs.insert({kLeftInput + name, kRightInput + name});
  for (const std::string& name : type.left) inputs.insert(kLeftInput + name);
  for (const std::string& name : type.right) inputs.insert(kRightInput + name);
  return inputs;
}

class LayoutCheck {
 public:
  LayoutCheck(const InputProfile& profile, const json& layout, const BuiltInType& type, std::string where,
              Findings& findings)
      : profile_(profile), layout_(layout), type_(type), where_(std::move(where)), findings_(findings) {}

  void Run() {
    for (const char* key : kSimulations) {
      if (layout_.value(key, json(true)) != json(type_.isSimulated)) Complain("\"" + std::string(key) + "\" is wrong");
    }
    const json steps = layout_.value("autoremappings", json());
    if (!steps.is_array()) return Complain("has no list of \"autoremappings\"");
    for (const json& step : steps) CheckStep(step);
    const std::set<std::string> expected = InputsToConvert(type_);
    for (const std::string& input : expected) {
      if (!converted_.contains(input)) Complain("does not convert " + input);
    }
    for (const std::string& input : converted_) {
      if (!expected.contains(input)) Complain("converts " + input + ", which is not there or the same as ours");
    }
  }

 private:
  void Complain(const std::string& what) { findings_.push_back(where_ + " " + what); }

  // The left hand's inputs are converted as the right hand's are, unless "mirror" says that they are not.
  void CheckStep(const json& step) {
    const std::string from = TextAt(step, "from");
    const std::string to = TextAt(step, "to");
    const std::string source = WithoutHand(to);
    if (!source.starts_with("/input/") || !profile_.Paths().contains(source)) Complain("converts to \"" + to + "\"");
    if (from.starts_with(kLeftInput) != to.starts_with(kLeftInput)) Complain("converts " + from + " across the hands");
    converted_.insert(from);
    if (step.value("mirror", json(true)) == false) return;
    if (!from.starts_with(kRightInput)) return Complain("mirrors " + from + ", which is not of the right hand");
    converted_.insert(kLeftInput + from.substr(kRightInput.size()));
  }

  const InputProfile& profile_;
  const json& layout_;
  const BuiltInType& type_;
  const std::string where_;
  Findings& findings_;
  std::set<std::string> converted_;
};

class RemappingCheck {
 public:
  RemappingCheck(const DriverFiles& files, const InputProfile& profile, std::string file, Findings& findings)
      : document_(files.Document(file)), profile_(profile), file_(std::move(file)), findings_(findings) {}

  void Run() {
    if (TextAt(document_, "to_controller_type") != profile_.ControllerType()) {
      Complain("\"to_controller_type\" is not the profile's");
    }
    CheckKeys(document_, {"to_controller_type", "layouts"});
    const json layouts = document_.is_object() ? document_.value("layouts", json()) : json();
    if (!layouts.is_array() || layouts.empty()) return Complain("has no \"layouts\"");
    for (const json& layout : layouts) CheckLayout(layout);
    CheckOrder();
  }

 private:
  void Complain(const std::string& what) { findings_.push_back(file_ + ": " + what); }

  // The runtime says nothing of keys that it does not know.
  void CheckKeys(const json& object, const std::set<std::string>& known) {
    for (const auto& [key, value] : object.items()) {
      if (!known.contains(key)) Complain("has \"" + key + "\", which the runtime does not know");
    }
  }

  void CheckLayout(const json& layout) {
    std::set<std::string> keys = {"priority", "from_controller_type", "autoremappings", "remappings"};
    keys.insert(std::begin(kSimulations), std::end(kSimulations));
    CheckKeys(layout, keys);
    for (const json& step : layout.value("autoremappings", json::array())) CheckKeys(step, {"from", "to", "mirror"});

    const std::string name = TextAt(layout, "from_controller_type");
    const auto type = std::ranges::find(BuiltInTypes(), name, &BuiltInType::name);
    if (type == BuiltInTypes().end()) return Complain("a layout is from \"" + name + "\", which is not built in");
    const json priority = layout.value("priority", json());
    if (priority.is_number_integer() && !priorities_.emplace(name, priority.get<int>()).second) {
      Complain("has two layouts from " + name);
    }
    LayoutCheck(profile_, layout, *type, file_ + ": the layout from " + name, findings_).Run();
  }

  // Of the types that an application has bindings for, the runtime takes the one with the highest priority.
  void CheckOrder() {
    std::optional<int> last;
    for (const BuiltInType& type : BuiltInTypes()) {
      const auto priority = priorities_.find(type.name);
      if (priority == priorities_.end()) {
        Complain("has no layout from " + type.name + " with a \"priority\"");
        continue;
      }
      if (last && priority->second >= *last)
        Complain(type.name + " does not come after the types that are more like ours");
      last = priority->second;
    }
  }

  const json& document_;
  const InputProfile& profile_;
  const std::string file_;
  Findings& findings_;
  std::map<std::string, int> priorities_;
};

}  // namespace

void CheckRemapping(const DriverFiles& files, const SourceFacts& facts, Findings& findings) {
  const InputProfile profile(files, facts);
  const auto file = files.Resolve(TextAt(profile.Document(), "remapping"));
  if (file && files.Has(*file)) RemappingCheck(files, profile, *file, findings).Run();
}

}  // namespace ombrel::test
