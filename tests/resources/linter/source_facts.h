#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace ombrel::test {

enum class SettingType { kBool, kInt32 };

// What the driver's sources say of its resources, and what they log.
struct SourceFacts {
  std::map<std::string, SettingType> settings;  // every key that is read
  std::set<std::string> components;             // "/input/grip/click", "/output/haptic"
  std::set<std::string> references;             // "{ombrel}/input/controller_profile.json"
  std::string inputProfile;                     // the one of these that is a controller's input profile
  std::string settingsSection;
  std::vector<std::string> logFormats;  // printf formats as written, without "\n" and blanks at the end
};

// Adds what one file's text says.
void ScanText(const std::string& text, SourceFacts& facts);

// The driver's folders below the root of the tree.
[[nodiscard]] SourceFacts ScanSources(const std::filesystem::path& root);

}  // namespace ombrel::test
