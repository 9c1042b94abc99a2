#include "checker/verdict.h"

#include <cstdio>
#include <utility>

#include "base/percentile.h"
#include "findings.h"

namespace checker {

NLOHMANN_JSON_SERIALIZE_ENUM(FramesShownBy, {{FramesShownBy::kNothing, nullptr},
                                             {FramesShownBy::kAnnouncement, "announcement"},
                                             {FramesShownBy::kHeldTextures, "held textures"},
                                             {FramesShownBy::kReads, "reads"}})

namespace {

using Json = nlohmann::ordered_json;

struct Row {
  const char* name;
  std::string value;
};

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f", value);
  return text;
}

std::string PerSecond(std::size_t count, double rate) {
  return std::to_string(count) + " (" + Number(rate) + " a second)";
}

std::string Spread(const std::vector<double>& values) {
  if (values.empty()) return "none";
  return "median " + Number(bench::Percentile(values, 0.5)) + " ms, p99 " + Number(bench::Percentile(values, 0.99)) +
         " ms, longest " + Number(bench::Percentile(values, 1)) + " ms";
}

std::vector<Row> Rows(const Verdict& verdict) {
  const Figures& figures = verdict.figures;
  std::vector<Row> rows{{"connections", std::to_string(figures.connections) + ", " + Number(figures.seconds) + " s"},
                        {"poses", PerSecond(figures.poses, figures.PosesPerSecond())},
                        {"between poses", Spread(figures.poseIntervals)},
                        {"controllers", std::to_string(figures.controllers)},
                        {"other messages", std::to_string(figures.otherMessages)},
                        {"pulses sent", std::to_string(figures.pulses)},
                        {"until messages are read", Spread(figures.readings)},
                        {"frames handed over", std::to_string(figures.framesHandedOver)},
                        {"driver waited in vain", std::to_string(figures.driverTimeouts)}};
  if (verdict.watched == Watched::kDriver) return rows;
  rows.push_back({"frames read", PerSecond(figures.framesRead, figures.FramesPerSecond())});
  rows.push_back({"until frames are taken", Spread(figures.handOffs)});
  rows.push_back({"textures held", Spread(figures.holds)});
  return rows;
}

// What is to be said of the frames, but for those that were read.
std::string FramesInWords(const Verdict& verdict) {
  switch (verdict.Frames()) {
    case FramesShownBy::kNothing:
      return verdict.watched == Watched::kDriver ? ", but no frame was announced" : ", but no frame was read";
    case FramesShownBy::kAnnouncement:
      return "; frames were announced, and nothing shows whether they were taken";
    case FramesShownBy::kHeldTextures:
      return "; frames were taken: the driver found a texture held " + std::to_string(verdict.figures.foundHeld) +
             (verdict.figures.foundHeld == 1 ? " time" : " times");
    case FramesShownBy::kReads:
      break;
  }
  return {};
}

std::string Summary(const Verdict& verdict) {
  if (verdict.figures.connections == 0) return "no driver was connected";
  const std::size_t broken = verdict.violations.size();
  const std::string rules =
      broken == 0 ? "no rule was" : std::to_string(broken) + (broken == 1 ? " rule was" : " rules were");
  return rules + " broken" + FramesInWords(verdict);
}

std::string NameOf(Rule rule) { return "P" + std::to_string(static_cast<int>(rule)); }

std::vector<std::string> NamesOfNotJudged(const Verdict& verdict) {
  std::vector<std::string> names;
  for (const Rule rule : NotJudged(verdict.watched)) names.push_back(NameOf(rule));
  return names;
}

Json Spreads(const std::vector<double>& values) {
  return {{"count", values.size()},
          {"median", bench::Percentile(values, 0.5)},
          {"p99", bench::Percentile(values, 0.99)},
          {"longest", bench::Percentile(values, 1)}};
}

Json FiguresInJson(const Figures& figures) {
  return {{"seconds", figures.seconds},
          {"connections", figures.connections},
          {"poses", figures.poses},
          {"posesPerSecond", figures.PosesPerSecond()},
          {"otherMessages", figures.otherMessages},
          {"controllers", figures.controllers},
          {"pulses", figures.pulses},
          {"framesHandedOver", figures.framesHandedOver},
          {"framesRead", figures.framesRead},
          {"framesPerSecond", figures.FramesPerSecond()},
          {"driverTimeouts", figures.driverTimeouts},
          {"poseIntervalMs", Spreads(figures.poseIntervals)},
          {"messageReadMs", Spreads(figures.readings)},
          {"frameTakenMs", Spreads(figures.handOffs)},
          {"textureHeldMs", Spreads(figures.holds)}};
}

std::string Joined(const std::vector<std::string>& parts, const char* separator) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : separator) + part;
  return text;
}

Json Chart(const char* title, const char* label, const std::vector<double>& values) {
  return {{"kind", "distribution"},
          {"title", title},
          {"x", {{"label", label}, {"unit", "ms"}}},
          {"y", {{"label", "how many"}, {"unit", ""}}},
          {"series", Json::array({{{"name", label}, {"values", values}}})}};
}

Json FigureSection(const Verdict& verdict) {
  Json table = {{"caption", "Figures"}, {"head", {"what", "figure"}}, {"rows", Json::array()}};
  for (const Row& row : Rows(verdict)) table["rows"].push_back({row.name, row.value});
  Json charts = Json::array();
  const Figures& figures = verdict.figures;
  const std::pair<const char*, const std::vector<double>*> kCharts[] = {{"Between two poses", &figures.poseIntervals},
                                                                        {"From hand-over to taking", &figures.handOffs},
                                                                        {"Textures held", &figures.holds},
                                                                        {"Until messages are read", &figures.readings}};
  for (const auto& [title, values] : kCharts) {
    if (!values->empty()) charts.push_back(Chart(title, "time", *values));
  }
  return {{"title", "The session in figures"}, {"charts", charts}, {"tables", Json::array({table})}};
}

}  // namespace

FramesShownBy Verdict::Frames() const {
  if (watched == Watched::kBothSides) {
    return figures.framesRead > 0 ? FramesShownBy::kReads : FramesShownBy::kNothing;
  }
  if (figures.foundHeld > 0) return FramesShownBy::kHeldTextures;
  return figures.announcements > 0 ? FramesShownBy::kAnnouncement : FramesShownBy::kNothing;
}

Verdict VerdictOf(const Session& session, Watched watched) {
  return {watched, Judge(session, watched), FiguresOf(session)};
}

std::string InText(const Verdict& verdict) {
  std::string text = "checker: " + Summary(verdict) + "\n";
  for (const Violation& violation : verdict.violations) {
    const RuleText& rule = TextOf(violation.rule);
    text += "\n" + NameOf(violation.rule) + "  " + rule.title + "\n";
    for (const std::string& evidence : violation.evidence) text += "    " + evidence + "\n";
    const std::size_t more = violation.count - violation.evidence.size();
    if (more != 0) text += "    and " + std::to_string(more) + " more\n";
    text += "    -> " + rule.remedy + "\n";
  }
  const auto notJudged = NamesOfNotJudged(verdict);
  if (!notJudged.empty()) text += "\nnot watched, on the companion's side: " + Joined(notJudged, ", ") + "\n";
  text += "\n";
  for (const Row& row : Rows(verdict)) {
    char line[160];
    std::snprintf(line, sizeof(line), "  %-24s %s\n", row.name, row.value.c_str());
    text += line;
  }
  return text;
}

Json InJson(const Verdict& verdict, Nanoseconds begin) {
  Json violations = Json::array();
  for (const Violation& violation : verdict.violations) {
    const RuleText& rule = TextOf(violation.rule);
    violations.push_back({{"rule", NameOf(violation.rule)},
                          {"title", rule.title},
                          {"seconds", static_cast<double>(violation.when - begin) / static_cast<double>(kSecond)},
                          {"count", violation.count},
                          {"evidence", violation.evidence},
                          {"remedy", rule.remedy}});
  }
  return {{"clean", verdict.IsClean()},
          {"framesSeen", verdict.HasFrames()},
          {"framesShownBy", verdict.Frames()},
          {"bothSidesWatched", verdict.watched == Watched::kBothSides},
          {"notWatched", NamesOfNotJudged(verdict)},
          {"violations", violations},
          {"figures", FiguresInJson(verdict.figures)}};
}

Json ForPage(const Verdict& verdict) {
  Json verdicts = Json::array();
  for (const Violation& violation : verdict.violations) {
    const RuleText& rule = TextOf(violation.rule);
    verdicts.push_back({{"name", NameOf(violation.rule) + ": " + rule.title},
                        {"result", "bad"},
                        {"expected", "never broken"},
                        {"found", std::to_string(violation.count) + " times. " + Joined(violation.evidence, "; ")},
                        {"meaning", rule.remedy}});
  }
  const bool isGood = verdict.IsClean() && verdict.Frames() >= FramesShownBy::kHeldTextures;
  if (verdict.IsClean() && verdict.HasFrames()) {
    verdicts.push_back({{"name", "Rules of the protocol"},
                        {"result", "good"},
                        {"expected", "none is broken"},
                        {"found", "none was broken"},
                        {"meaning", "The companion keeps to the protocol, as far as this session shows."}});
  }
  Json facts = Json::array();
  if (const auto notJudged = NamesOfNotJudged(verdict); !notJudged.empty()) {
    facts.push_back({{"name", "Not watched, on the companion's side"}, {"value", Joined(notJudged, ", ")}});
  }
  const char* const otherwise = verdict.IsClean() && verdict.HasFrames() ? "unknown" : "bad";
  return {{"title", "A companion on the bench"},
          {"subtitle", Summary(verdict)},
          {"verdict", isGood ? "good" : otherwise},
          {"facts", facts},
          {"verdicts", verdicts},
          {"sections", Json::array({FigureSection(verdict)})}};
}

}  // namespace checker
