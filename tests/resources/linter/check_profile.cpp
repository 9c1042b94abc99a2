#include <map>
#include <regex>

#include "input_profile.h"
#include "png.h"
#include "runtime_actions.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

// What a source of a type may be made of.
const std::map<std::string, std::set<std::string>>& PartsOfTypes() {
  static const std::map<std::string, std::set<std::string>> kParts = {{"button", {"click", "touch"}},
                                                                      {"trigger", {"click", "touch", "value"}},
                                                                      {"trackpad", {"click", "touch", "x", "y"}},
                                                                      {"pose", {}},
                                                                      {"vibration", {}}};
  return kParts;
}

// The poses that the runtime's own profile for this render model lists. Bindings name no others.
const std::set<std::string>& PosesOfTheRenderModel() {
  static const std::set<std::string> kPoses = {"/pose/raw", "/pose/base",  "/pose/handgrip",
                                               "/pose/tip", "/pose/front", "/pose/gdc2015"};
  return kPoses;
}

class ProfileCheck {
 public:
  ProfileCheck(const DriverFiles& files, const SourceFacts& facts, Findings& findings)
      : files_(files), facts_(facts), findings_(findings), profile_(files, facts) {}

  void Run() {
    if (!profile_.Document().is_object()) return Complain("is missing or no object");
    CheckFields();
    CheckComponents();
    CheckPoses();
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
    if (document.contains("compatibility_mode_controller_type")) {
      Complain("\"compatibility_mode_controller_type\" is ignored beside \"remapping\"");
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
      if (TextAt(binding, "app_key") != kMenusAppKey) {
        Complain("a default binding's \"app_key\" is not " + std::string(kMenusAppKey));
      }
      const std::string url = TextAt(binding, "binding_url");
      if (!files_.Has(profile_.FileBeside(url))) Complain("\"" + url + "\" is no file beside it");
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

  void CheckPoses() {
    const std::set<std::string> paths = profile_.Paths();
    for (const std::string& pose : PosesOfTheRenderModel()) {
      if (!paths.contains(pose)) Complain("lacks " + pose + ", which the render model has");
    }
    for (const std::string& path : paths) {
      if (path.starts_with("/pose/") && !PosesOfTheRenderModel().contains(path)) {
        Complain("has " + path + ", which the render model lacks");
      }
    }
  }

  void CheckSource(const std::string& path) {
    const json source = profile_.Source(path);
    const std::string type = TextAt(source, "type");
    const auto parts = PartsOfTypes().find(type);
    if (parts == PartsOfTypes().end()) return Complain(path + " is of no known type");
    if ((type == "vibration") != path.starts_with("/output/") || (type == "pose") != path.starts_with("/pose/")) {
      Complain(path + " is of the wrong type");
    }
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
