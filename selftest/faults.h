#pragma once

#include <string>
#include <vector>

#include "report.h"

namespace ombrel::selftest {

// A fault that the scenarios program plays, and what the report calls it.
struct FaultPlan {
  const char* scenario;
  const char* name;
};

// Those that are safe on anybody's machine: none loses a graphics device, sends random bytes, or asks the driver to end.
[[nodiscard]] const std::vector<FaultPlan>& Faults();
// The quickest of them, one of each kind.
[[nodiscard]] const std::vector<FaultPlan>& FaultsInBrief();

// `report` is what the scenarios program wrote, null when there is nothing; `exit` says how it ended.
[[nodiscard]] std::vector<Verdict> JudgeFaults(const std::vector<FaultPlan>& played, const Json& report,
                                               const std::string& exit);
[[nodiscard]] Json SectionOfFaults(const Json& report);

}  // namespace ombrel::selftest
