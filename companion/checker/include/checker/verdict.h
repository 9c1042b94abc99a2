#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "checker/figures.h"
#include "checker/rules.h"
#include "checker/session.h"

namespace checker {

// What the checker has to say of a session.
struct Verdict {
  Watched watched = Watched::kBothSides;
  std::vector<Violation> violations;
  Figures figures;

  // No rule was broken.
  [[nodiscard]] bool IsClean() const { return violations.empty(); }
  // The companion was connected and, as far as that can be seen, got frames.
  [[nodiscard]] bool HasFrames() const {
    return watched == Watched::kBothSides ? figures.framesRead > 0 : figures.framesHandedOver > 0;
  }
};

[[nodiscard]] Verdict VerdictOf(const Session& session, Watched watched);

// For people: each violation with time, evidence and remedy, then the figures.
[[nodiscard]] std::string InText(const Verdict& verdict);
// For programs; README.md lists the fields.
[[nodiscard]] nlohmann::ordered_json InJson(const Verdict& verdict, Nanoseconds begin);
// For the page, as report/report.schema.json has it.
[[nodiscard]] nlohmann::ordered_json ForPage(const Verdict& verdict);

}  // namespace checker
