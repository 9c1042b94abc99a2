#include "scenario_report.h"

#include <utility>

#include "base/text_file.h"

namespace bench::scenarios {

ScenarioReport::ScenarioReport(std::filesystem::path file, const SharingDecision& sharing)
    : file_(std::move(file)),
      json_({{"sharing", NameOf(sharing.sharing)},
             {"reason", sharing.reason},
             {"scenarios", nlohmann::ordered_json::array()}}) {}

void ScenarioReport::Add(const std::string& name, const ScenarioRun& run, double seconds) {
  auto counts = nlohmann::ordered_json::array();
  for (const Count& count : run.Counts()) {
    counts.push_back({{"what", count.what}, {"before", count.before}, {"after", count.after}});
  }
  json_["scenarios"].push_back({{"name", name},
                                {"result", run.Failures().empty() ? "pass" : "fail"},
                                {"seconds", seconds},
                                {"figures", run.Figures()},
                                {"failures", run.Failures()},
                                {"skipped", run.Skipped()},
                                {"counts", std::move(counts)}});
  Write();
}

void ScenarioReport::AddSkipped(const std::string& name) {
  json_["scenarios"].push_back({{"name", name}, {"result", "skip"}});
  Write();
}

void ScenarioReport::Write() const {
  if (file_.empty()) return;
  WriteText(file_, json_.dump(1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n');
}

}  // namespace bench::scenarios
