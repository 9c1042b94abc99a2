#pragma once

#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

#include "scenario.h"
#include "sharing/choice.h"

namespace bench::scenarios {

// What came of each scenario, for programs: {"sharing", "reason", "scenarios": [{"name", "result": "pass", "fail" or
// "skip", "seconds", "figures", "failures", "skipped", "counts": [{"what", "before", "after"}]}]}. The file is written
// anew after each scenario, so that it tells of those before a crash.
class ScenarioReport {
 public:
  // Without a file nothing is written.
  ScenarioReport(std::filesystem::path file, const SharingDecision& sharing);

  // Throw std::runtime_error when the file cannot be written.
  void Add(const std::string& name, const ScenarioRun& run, double seconds);
  void AddSkipped(const std::string& name);

 private:
  void Write() const;

  std::filesystem::path file_;
  nlohmann::ordered_json json_;
};

}  // namespace bench::scenarios
