#include "input_profile.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

constexpr const char* kParts[] = {"click", "touch", "value", "x", "y"};

}  // namespace

InputProfile::InputProfile(const DriverFiles& files, const SourceFacts& facts)
    : file_(files.Resolve(facts.inputProfile).value_or(facts.inputProfile)), document_(files.Document(file_)) {}

json InputProfile::Source(const std::string& path) const {
  const json sources = document_.is_object() ? document_.value("input_source", json()) : json();
  return sources.is_object() ? sources.value(path, json::object()) : json::object();
}

std::set<std::string> InputProfile::Paths() const {
  std::set<std::string> paths;
  const json sources = document_.is_object() ? document_.value("input_source", json()) : json();
  for (const auto& [path, source] : sources.items()) paths.insert(path);
  return paths;
}

std::set<std::string> InputProfile::Components() const {
  std::set<std::string> components;
  for (const std::string& path : Paths()) {
    if (path.starts_with("/output/")) components.insert(path);
    const json source = Source(path);
    for (const char* part : kParts) {
      if (source.value(part, json()) == true) components.insert(path + "/" + part);
    }
  }
  return components;
}

std::string InputProfile::FileBeside(const std::string& url) const {
  return file_.substr(0, file_.rfind('/') + 1) + url;
}

std::set<std::string> InputProfile::DefaultBindings() const {
  std::set<std::string> files;
  const json bindings = document_.is_object() ? document_.value("default_bindings", json()) : json();
  for (const json& binding : bindings) files.insert(FileBeside(TextAt(binding, "binding_url")));
  return files;
}

std::string WithoutHand(const std::string& path) {
  for (const std::string hand : {"/user/hand/left", "/user/hand/right"}) {
    if (path.starts_with(hand + "/")) return path.substr(hand.size());
  }
  return "";
}

}  // namespace ombrel::test
