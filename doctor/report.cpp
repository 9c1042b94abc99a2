#include "doctor/report.h"

#include <algorithm>

#include "doctor/checks.h"
#include "doctor/paths.h"
#include "doctor/server_log.h"

namespace ombrel::doctor {
namespace {

using Values = std::vector<std::string>;

std::string YesOrNo(bool is) { return is ? "yes" : "no"; }

struct FactLabel {
  std::string_view id;
  Text label;
};

constexpr FactLabel kLabels[] = {
    {"folder", {"Folder of this driver", "Ordner dieses Treibers"}},
    {"library", {"Its library loads", "Seine Bibliothek lädt"}},
    {"drivers", {"Drivers in SteamVR's list", "Treiber in SteamVRs Liste"}},
    {"runtime", {"SteamVR", "SteamVR"}},
    {"runtimeRunning", {"SteamVR is running", "SteamVR läuft"}},
    {"companionRunning", {"Ombrel.exe is running", "Ombrel.exe läuft"}},
    {"pipes", {"Its connection", "Seine Verbindung"}},
    {"log", {"SteamVR's newest log", "SteamVRs neuestes Protokoll"}},
    {"logHeadset", {"The headset was taken then", "Das Headset wurde dabei genommen"}},
    {"adapters", {"Graphics adapters", "Grafikkarten"}},
    {"adapterUsed",
     {"The driver takes (unless Windows' graphics settings say otherwise)",
      "Der Treiber nimmt (wenn die Grafikeinstellungen nichts anderes sagen)"}},
    {"administrator", {"This check runs as administrator", "Diese Prüfung läuft als Administrator"}},
    {"crashDumps", {"Crash dumps", "Absturzabbilder"}},
};

constexpr Text kWords[] = {
    {"yes", "ja"},
    {"no", "nein"},
    {"none", "keine"},
    {"not found", "nicht gefunden"},
    {"not tried", "nicht versucht"},
    {"cannot be listed", "nicht auflistbar"},
};

std::string Word(const std::string& value, Language language) {
  const auto word =
      std::find_if(std::begin(kWords), std::end(kWords), [&](const Text& each) { return value == each.english; });
  return word == std::end(kWords) ? value : word->In(language);
}

std::string LibraryFact(const DriverFolder& driver) {
  if (!driver.hasLibrary || driver.processor != kMachineX64) return "not tried";
  return YesOrNo(driver.load.error == 0);
}

Values PipesFact(const Survey& survey) {
  if (!survey.companion.pipes) return {"cannot be listed"};
  return survey.companion.pipes->empty() ? Values{"none"} : *survey.companion.pipes;
}

Values OrNone(const Values& values) { return values.empty() ? Values{"none"} : values; }

std::string OrNotFound(const std::string& value) { return value.empty() ? "not found" : value; }

Values DriversFact(const Runtime& runtime) {
  Values paths;
  for (const ListedFolder& each : runtime.drivers) paths.push_back(each.path);
  return OrNone(paths);
}

Values AdaptersFact(const std::vector<Adapter>& adapters) {
  Values names;
  for (const Adapter& each : adapters) names.push_back(each.name + " (" + each.luid + ")");
  return OrNone(names);
}

std::vector<Fact> FactsOf(const Survey& survey) {
  const Adapter* used = UsedAdapter(survey.adapters);
  const bool hasLog = survey.log.state == ReadState::kRead;
  return {
      {"folder", {survey.driver.path}},
      {"library", {LibraryFact(survey.driver)}},
      {"drivers", DriversFact(survey.runtime)},
      {"runtime", {OrNotFound(survey.runtime.folder)}},
      {"runtimeRunning", {YesOrNo(survey.runtime.isRunning)}},
      {"companionRunning", {YesOrNo(survey.companion.isRunning)}},
      {"pipes", PipesFact(survey)},
      {"log", {hasLog ? survey.log.path + ", " + survey.log.written : "not found"}},
      {"logHeadset", {YesOrNo(HasActivatedHeadset(survey.log.lines))}},
      {"adapters", AdaptersFact(survey.adapters)},
      {"adapterUsed", {used == nullptr ? "none" : used->name}},
      {"administrator", {YesOrNo(survey.account.isElevated)}},
      {"crashDumps", {std::to_string(survey.crashDumps.size())}},
  };
}

constexpr Text kSeverities[] = {{"PROBLEM", "FEHLER"}, {"WARNING", "WARNUNG"}, {"HINT", "HINWEIS"}};
constexpr const char* kSeverityIds[] = {"problem", "warning", "hint"};

std::string AsText(const Finding& finding, Language language) {
  const FindingText& text = TextOf(finding.id);
  const std::string severity = kSeverities[static_cast<std::size_t>(text.severity)].In(language);
  std::string line = severity + ":";
  line.resize(10, ' ');
  return line + Filled(text.what.In(language), finding.values) + "\n" + std::string(10, ' ') +
         Filled(text.todo.In(language), finding.values) + "\n\n";
}

std::string AsText(const Fact& fact, Language language) {
  const auto label =
      std::find_if(std::begin(kLabels), std::end(kLabels), [&](const FactLabel& each) { return each.id == fact.id; });
  std::string line = std::string("  ") + label->label.In(language) + ": ";
  if (fact.values.size() == 1) return line + Word(fact.values.front(), language) + "\n";
  for (const std::string& value : fact.values) line += "\n    " + Word(value, language);
  return line + "\n";
}

std::size_t Count(const Report& report, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(report.findings.begin(), report.findings.end(),
                    [&](const Finding& each) { return TextOf(each.id).severity == severity; }));
}

std::string Verdict(const Report& report, Language language) {
  constexpr Text kWell{"Nothing was found that stands in the way of a picture.",
                       "Nichts gefunden, was einem Bild im Wege steht."};
  constexpr Text kCounts{"Problems: {0}. Warnings: {1}. The first one comes first: what follows may go with it.",
                         "Fehler: {0}. Warnungen: {1}. Den ersten zuerst: Was folgt, erledigt sich womöglich mit."};
  if (report.IsWell()) return kWell.In(language);
  return Filled(kCounts.In(language),
                {std::to_string(Count(report, Severity::kProblem)), std::to_string(Count(report, Severity::kWarning))});
}

}  // namespace

bool Report::IsWell() const { return Count(*this, Severity::kProblem) == 0 && Count(*this, Severity::kWarning) == 0; }

Report MakeReport(const Survey& survey) { return {Examine(survey), FactsOf(survey)}; }

std::string AsText(const Report& report, Language language) {
  constexpr Text kLookedAt{"What was looked at:", "Angesehen wurde:"};
  std::string text = "Ombrel doctor " OMBREL_VERSION "\n\n";
  for (const Finding& finding : report.findings) text += AsText(finding, language);
  text += std::string(kLookedAt.In(language)) + "\n";
  for (const Fact& fact : report.facts) text += AsText(fact, language);
  return text + "\n" + Verdict(report, language) + "\n";
}

nlohmann::ordered_json AsJson(const Report& report, Language language, const Anonymizer& anonymizer) {
  nlohmann::ordered_json findings = nlohmann::ordered_json::array();
  for (const Finding& finding : report.findings) {
    const FindingText& text = TextOf(finding.id);
    Values values;
    for (const std::string& value : finding.values) values.push_back(anonymizer.Clean(value));
    findings.push_back({{"id", finding.id},
                        {"severity", kSeverityIds[static_cast<std::size_t>(text.severity)]},
                        {"what", Filled(text.what.In(language), values)},
                        {"todo", Filled(text.todo.In(language), values)},
                        {"values", values}});
  }
  nlohmann::ordered_json facts = nlohmann::ordered_json::object();
  for (const Fact& fact : report.facts) {
    Values values;
    for (const std::string& value : fact.values) values.push_back(anonymizer.Clean(value));
    facts[std::string(fact.id)] = values;
  }
  return {{"schema", 1},
          {"version", OMBREL_VERSION},
          {"result", report.IsWell() ? "well" : "findings"},
          {"findings", findings},
          {"facts", facts}};
}

}  // namespace ombrel::doctor
