#include "doctor/paths.h"
#include "doctor/report.h"
#include "doctor/server_log.h"

namespace ombrel::doctor {
namespace {

using nlohmann::json;

constexpr auto kReplace = json::error_handler_t::replace;

// The sections that bear on drivers. The others are other programs', and tell more of a player than a helper needs.
json SettingsOfDrivers(const json& settings) {
  json kept = json::object();
  if (!settings.is_object()) return kept;
  for (const auto& [key, section] : settings.items()) {
    if (key == "steamvr" || key.starts_with("driver_")) kept[key] = section;
  }
  return kept;
}

// What was not understood is handed on as it stands.
std::string Shown(const JsonFile& file, const json& value, const Anonymizer& anonymizer) {
  if (!file.IsUnderstood()) return anonymizer.Clean(file.bytes);
  return anonymizer.CleanJson(value).dump(2, ' ', false, kReplace) + "\n";
}

std::string OurLines(const std::vector<std::string>& lines, const Anonymizer& anonymizer) {
  std::string ours;
  for (const std::string& line : lines) {
    if (IsAboutUs(line)) ours += anonymizer.Clean(line) + "\n";
  }
  return ours;
}

std::string DumpNames(const Survey& survey, const Anonymizer& anonymizer) {
  std::string names;
  for (const std::string& dump : survey.crashDumps) names += anonymizer.Clean(dump) + "\n";
  return names;
}

}  // namespace

std::vector<NamedFile> MakeBundle(const Survey& survey, const Report& report) {
  const Anonymizer anonymizer(survey.account);
  const JsonFile& registry = survey.runtime.pathRegistry;
  const JsonFile& settings = survey.runtime.settings;
  return {
      {"report.txt", anonymizer.Clean(AsText(report, Language::kEnglish))},
      {"report.json", AsJson(report, Language::kEnglish, anonymizer).dump(2, ' ', false, kReplace) + "\n"},
      {"openvrpaths.txt", Shown(registry, registry.value, anonymizer)},
      {"settings.txt", Shown(settings, SettingsOfDrivers(settings.value), anonymizer)},
      {"server_log.txt", OurLines(survey.log.lines, anonymizer)},
      {"server_log_before.txt", OurLines(NewestSession(survey.previousLog), anonymizer)},
      {"crash_dumps.txt", DumpNames(survey, anonymizer)},
  };
}

}  // namespace ombrel::doctor
