#include "lint.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

constexpr const char* kSettingsFile = "resources/settings/default.vrsettings";

bool HasType(const json& value, SettingType type) {
  return type == SettingType::kBool ? value.is_boolean() : value.is_number_integer();
}

}  // namespace

void CheckSettings(const DriverFiles& files, const SourceFacts& facts, Findings& findings) {
  const auto complain = [&](const std::string& what) { findings.push_back(std::string(kSettingsFile) + ": " + what); };
  const json& document = files.Document(kSettingsFile);
  const std::string section = "driver_" + files.Name();
  if (facts.settingsSection != section) complain("the driver reads another section than \"" + section + "\"");
  if (!document.is_object() || document.size() != 1 || !document.contains(section) || !document[section].is_object()) {
    return complain("has not the one section \"" + section + "\"");
  }
  for (const auto& [key, type] : facts.settings) {
    if (!document[section].contains(key)) {
      complain("lacks \"" + key + "\", which the driver reads");
    } else if (!HasType(document[section][key], type)) {
      complain("\"" + key + "\" is of another type than the driver reads");
    }
  }
  for (const auto& [key, value] : document[section].items()) {
    if (!facts.settings.contains(key)) complain("has \"" + key + "\", which the driver does not read");
  }
}

}  // namespace ombrel::test
