#include <regex>

#include "input_profile.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

constexpr const char* kLocalizationFile = "resources/localization/localization.json";
constexpr const char* kTag = "language_tag";

void CheckLanguage(const json& language, const std::set<std::string>& wanted, Findings& findings) {
  const std::string tag = TextAt(language, kTag);
  const auto complain = [&](const std::string& what) {
    findings.push_back(std::string(kLocalizationFile) + ": " + tag + " " + what);
  };
  if (!std::regex_match(tag, std::regex("[a-z]{2}_[A-Z]{2}"))) complain("is no language");
  for (const std::string& key : wanted) {
    if (TextAt(language, key).empty()) complain("has no text for " + key);
  }
  for (const auto& [key, text] : language.items()) {
    if (key != kTag && !wanted.contains(key)) complain("has a text for " + key + ", which is not there");
  }
}

}  // namespace

// Every language has a text for the controller's type and for each of its inputs and outputs, and for nothing else: poses
// are the render model's.
void CheckLocalization(const DriverFiles& files, const SourceFacts& facts, Findings& findings) {
  const InputProfile profile(files, facts);
  const json& document = files.Document(kLocalizationFile);
  if (!document.is_array()) return findings.push_back(std::string(kLocalizationFile) + ": is missing or no list");
  std::set<std::string> wanted = profile.Paths();
  std::erase_if(wanted, [](const std::string& path) { return path.starts_with("/pose/"); });
  wanted.insert(profile.ControllerType());
  std::set<std::string> tags;
  for (const json& language : document) {
    CheckLanguage(language, wanted, findings);
    if (!tags.insert(TextAt(language, kTag)).second)
      findings.push_back(std::string(kLocalizationFile) + ": a language comes twice");
  }
  for (const char* tag : {"en_US", "de_DE"}) {
    if (!tags.contains(tag)) findings.push_back(std::string(kLocalizationFile) + ": has no " + tag);
  }
}

}  // namespace ombrel::test
