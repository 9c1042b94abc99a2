#include "source_facts.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <regex>

namespace ombrel::test {
namespace {

namespace fs = std::filesystem;

void ForEachMatch(const std::string& text, const char* pattern, const std::function<void(const std::smatch&)>& use) {
  const std::regex expression(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) use(*match);
}

std::string WithoutLineEnd(std::string format) {
  if (format.ends_with("\\n")) format.resize(format.size() - 2);
  while (format.ends_with(' ')) format.pop_back();
  return format;
}

}  // namespace

void ScanText(const std::string& text, SourceFacts& facts) {
  ForEachMatch(text, R"rx(Read(Bool|Int32)Setting\("([^"]*)")rx", [&](const std::smatch& match) {
    facts.settings[match[2]] = match[1] == "Bool" ? SettingType::kBool : SettingType::kInt32;
  });
  ForEachMatch(text, R"rx("(/(?:input|output)/[a-z0-9_/]+)")rx",
               [&](const std::smatch& match) { facts.components.insert(match[1]); });
  ForEachMatch(text, R"rx("(\{[a-z0-9_]+\}/[^"]+)")rx",
               [&](const std::smatch& match) { facts.references.insert(match[1]); });
  ForEachMatch(text, R"rx(Prop_InputProfilePath_String,\s*"([^"]*)")rx",
               [&](const std::smatch& match) { facts.inputProfile = match[1]; });
  ForEachMatch(text, R"rx(kSection = "([^"]*)")rx",
               [&](const std::smatch& match) { facts.settingsSection = match[1]; });
  ForEachMatch(text, R"rx(\bLog\(\s*"((?:[^"\\]|\\.)*)")rx",
               [&](const std::smatch& match) { facts.logFormats.push_back(WithoutLineEnd(match[1])); });
}

SourceFacts ScanSources(const fs::path& root) {
  SourceFacts facts;
  for (const char* folder : {"platform", "driver", "link", "render", "devices", "hmd"}) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / folder)) {
      const std::string extension = entry.path().extension().string();
      if (extension != ".cpp" && extension != ".h") continue;
      std::ifstream stream(entry.path(), std::ios::binary);
      ScanText({std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}, facts);
    }
  }
  return facts;
}

}  // namespace ombrel::test
