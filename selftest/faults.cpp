#include "faults.h"

#include <algorithm>

namespace ombrel::selftest {
namespace {

constexpr const char* kFaultGroup = "Faults";
constexpr const char* kExpected = "the next companion gets frames and poses";
constexpr const char* kMeaning = "A companion that fails must not take the headset with it.";

Json Find(const Json& report, const char* scenario) {
  if (!report.is_object()) return nullptr;
  for (const Json& each : report.at("scenarios")) {
    if (each.at("name") == scenario) return each;
  }
  return nullptr;
}

std::string Found(const Json& played) {
  if (played.at("result") == "pass") return "it does";
  std::string failures;
  for (const std::string failure : played.at("failures")) failures += (failures.empty() ? "not: " : "; ") + failure;
  return failures;
}

Verdict JudgeOne(const FaultPlan& fault, const Json& report, const std::string& exit) {
  const Json played = Find(report, fault.scenario);
  if (played.is_null())
    return {kFaultGroup, fault.name, Result::kBad, kExpected, "it was not come to: " + exit, kMeaning};
  if (played.at("result") == "skip")
    return {kFaultGroup, fault.name, Result::kUnknown, kExpected, "not played", kMeaning};
  return {kFaultGroup, fault.name, GoodIf(played.at("result") == "pass"), kExpected, Found(played), kMeaning};
}

Json CountRows(const Json& report) {
  Json rows = Json::array();
  for (const Json& played : report.at("scenarios")) {
    if (!played.contains("counts")) continue;
    for (const Json& count : played.at("counts")) {
      rows.push_back({played.at("name"), count.at("what"), count.at("before"), count.at("after")});
    }
  }
  return rows;
}

}  // namespace

const std::vector<FaultPlan>& Faults() {
  static const std::vector<FaultPlan> kFaults{
      {"killed_between_pipes", "Companion killed between its two pipes"},
      {"killed_in_header", "Companion killed in the middle of a header"},
      {"killed_in_payload", "Companion killed in the middle of a message"},
      {"killed_holding_texture", "Companion killed while it holds a texture"},
      {"killed_while_write_waits", "Companion killed while the driver writes to it"},
      {"silent_companion", "Companion that never speaks"},
      {"restarts", "Companions that come and go at any time"},
      {"not_reading", "Companion that does not read"},
      {"growth_reconnects", "Reconnections: threads, handles and memory stay as they are"},
  };
  return kFaults;
}

const std::vector<FaultPlan>& FaultsInBrief() {
  static const std::vector<FaultPlan> kFaults{
      {"killed_in_payload", "Companion killed in the middle of a message"},
      {"killed_holding_texture", "Companion killed while it holds a texture"},
  };
  return kFaults;
}

std::vector<Verdict> JudgeFaults(const std::vector<FaultPlan>& played, const Json& report, const std::string& exit) {
  std::vector<Verdict> verdicts;
  for (const FaultPlan& fault : played) verdicts.push_back(JudgeOne(fault, report, exit));
  return verdicts;
}

Json SectionOfFaults(const Json& report) {
  Json section{{"title", "Faults"}};
  if (!report.is_object()) return section;
  Json rows = Json::array();
  for (const Json& played : report.at("scenarios")) {
    rows.push_back({played.at("name"), played.at("result"), played.value("seconds", 0.0), played.value("figures", "")});
  }
  section["tables"] = Json::array({Table("Scenarios", {"scenario", "result", "seconds", "figures"}, std::move(rows)),
                                   Table("Before and after, in the process that has the driver",
                                         {"scenario", "what", "after warm-up", "at the end"}, CountRows(report))});
  return section;
}

}  // namespace ombrel::selftest
