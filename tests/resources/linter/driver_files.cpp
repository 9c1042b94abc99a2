#include "driver_files.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ombrel::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

bool IsJson(const fs::path& file) {
  const std::string extension = file.extension().string();
  return extension == ".json" || extension == ".vrsettings" || extension == ".vrdrivermanifest" ||
         extension == ".vrresources";
}

// Throws for a key that an object has twice: the parser by itself would take the last.
json ParseStrictly(const std::string& text) {
  std::vector<std::set<std::string>> keys;
  return json::parse(text, [&keys](int, json::parse_event_t event, json& value) {
    if (event == json::parse_event_t::object_start) keys.emplace_back();
    if (event == json::parse_event_t::object_end) keys.pop_back();
    if (event == json::parse_event_t::key && !keys.back().insert(value.get<std::string>()).second) {
      throw std::runtime_error("the key " + value.dump() + " stands there twice");
    }
    return true;
  });
}

}  // namespace

DriverFiles::DriverFiles(const fs::path& folder, Findings& findings) : folder_(folder) {
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const std::string name = entry.path().lexically_relative(folder).generic_string();
    names_.insert(name);
    if (!IsJson(entry.path())) continue;
    try {
      documents_[name] = ParseStrictly(Bytes(name));
    } catch (const std::exception& error) {
      findings.push_back(name + ": is not valid JSON: " + error.what());
    }
  }
}

std::string DriverFiles::Bytes(const std::string& file) const {
  std::ifstream stream(folder_ / file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

const json& DriverFiles::Document(const std::string& file) const {
  static const json kNone;
  const auto found = documents_.find(file);
  return found != documents_.end() ? found->second : kNone;
}

std::string DriverFiles::Name() const { return TextAt(Document("driver.vrdrivermanifest"), "name"); }

std::optional<std::string> DriverFiles::Resolve(const std::string& reference) const {
  const std::string prefix = "{" + Name() + "}/";
  if (!reference.starts_with(prefix)) return std::nullopt;
  return "resources/" + reference.substr(prefix.size());
}

const json& DriverFiles::Referred(const json& reference) const {
  const auto file = reference.is_string() ? Resolve(reference.get<std::string>()) : std::nullopt;
  return Document(file.value_or(""));
}

std::string TextAt(const json& object, const std::string& key) {
  const bool isText = object.is_object() && object.contains(key) && object[key].is_string();
  return isText ? object[key].get<std::string>() : std::string();
}

}  // namespace ombrel::test
