#include <map>
#include <regex>

#include "input_profile.h"
#include "png.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

// What a source of a type may be made of.
const std::map<std::string, std::set<std::string>>& PartsOfTypes() {
  static const std::map<std::string, std::set<std::string>> kParts = {{"button", {"click", "touch"}},
                                                                      {"trigger", {"click", "touch", "value"}},
                                                                      {"trackpad", {"click", "touch", "x", "y"}},
                                                                      {"vibration", {}}};
  return kParts;
}

class ProfileCheck {
 public:
  ProfileCheck(const DriverFiles& files, const SourceFacts& facts, Findings& findings)
      : files_(files), facts_(facts), findings_(findings), profile_(files, facts) {}

  void Run() {
    if (!profile_.Document().is_object()) return Complain("is missing or no object");
    CheckFields();
    CheckComponents();
    for (const std::string& path : profile_.Paths()) CheckSource(path);
  }

 private:
  void Complain(const std::string& what) { findings_.push_back(profile_.File() + ": " + what); }

  void CheckFields() {
    const json& document = profile_.Document();
    if (TextAt(document, "jsonid") != "input_profile") Complain("\"jsonid\" is wrong");
    const std::regex typeName("[a-z0-9_]+");
    if (!std::regex_match(profile_.ControllerType(), typeName)) Complain("\"controller_type\" is not a name");
    for (const char* key : {"legacy_binding", "remapping"}) {
      if (!files_.Resolve(TextAt(document, key))) Complain("\"" + std::string(key) + "\" names no file");
    }
    const std::regex modes("single_device|controller_handed|hmd");
    if (!std::regex_match(TextAt(document, "input_bindingui_mode"), modes))
      Complain("\"input_bindingui_mode\" is wrong");
    for (const char* side : {"input_bindingui_left", "input_bindingui_right"}) CheckImage(side);
    CheckDefaultBindings(document.value("default_bindings", json()));
  }

  // The image has to be a picture; a missing file is another rule's finding.
  void CheckImage(const std::string& side) {
    const auto file = files_.Resolve(TextAt(profile_.Document().value(side, json()), "image"));
    if (!file) return Complain("\"" + side + "\" has no \"image\"");
    if (!files_.Has(*file)) return;
    const auto size = PngSize(files_.Bytes(*file));
    if (!size) return findings_.push_back(*file + ": is not a whole PNG file");
    for (const std::string& path : profile_.Paths()) {
      const json point = profile_.Source(path).value("binding_image_point", json());
      const bool isPoint = point.is_array() && point.size() == 2 && point[0].is_number_unsigned() &&
                           point[1].is_number_unsigned() && point[0] < size->width && point[1] < size->height;
      if (!isPoint) Complain(path + " has no \"binding_image_point\" in the image of \"" + side + "\"");
    }
  }

  void CheckDefaultBindings(const json& bindings) {
    if (!bindings.is_array() || bindings.empty()) return Complain("has no \"default_bindings\"");
    for (const json& binding : bindings) {
      if (TextAt(binding, "app_key").empty()) Complain("a default binding has no \"app_key\"");
      if (!files_.Resolve(TextAt(binding, "binding_url")))
        Complain("a default binding's \"binding_url\" names no file");
    }
  }

  void CheckComponents() {
    const std::set<std::string> components = profile_.Components();
    for (const std::string& made : facts_.components) {
      if (!components.contains(made)) Complain("lacks " + made + ", which a controller has");
    }
    for (const std::string& component : components) {
      if (!facts_.components.contains(component)) Complain("has " + component + ", which no controller has");
    }
  }

  void CheckSource(const std::string& path) {
    const json source = profile_.Source(path);
    const std::string type = TextAt(source, "type");
    const auto parts = PartsOfTypes().find(type);
    if (parts == PartsOfTypes().end()) return Complain(path + " is of no known type");
    if ((type == "vibration") != path.starts_with("/output/")) Complain(path + " is of the wrong type");
    for (const auto& [key, value] : source.items()) {
      if (value.is_boolean() && !parts->second.contains(key)) Complain(path + ": a " + type + " has no " + key);
    }
  }

  const DriverFiles& files_;
  const SourceFacts& facts_;
  Findings& findings_;
  const InputProfile profile_;
};

}  // namespace

void CheckProfile(const DriverFiles& files, const SourceFacts& facts, Findings& findings) {
  ProfileCheck(files, facts, findings).Run();
}

}  // namespace ombrel::test
