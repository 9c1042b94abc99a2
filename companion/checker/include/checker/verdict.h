#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "checker/figures.h"
#include "checker/rules.h"
#include "checker/session.h"

namespace checker {

// What shows that frames came, the best of it. Who watches the driver alone sees no reading: there a texture that the
// driver found held shows that the companion takes them, and an announcement that it might.
enum class FramesShownBy { kNothing, kAnnouncement, kHeldTextures, kReads };

// What the checker has to say of a session.
struct Verdict {
  Watched watched = Watched::kBothSides;
  std::vector<Violation> violations;
  Figures figures;

  // No rule was broken.
  [[nodiscard]] bool IsClean() const { return violations.empty(); }
  [[nodiscard]] FramesShownBy Frames() const;
  // The companion was connected and, as far as that can be seen, got frames.
  [[nodiscard]] bool HasFrames() const { return Frames() != FramesShownBy::kNothing; }
};

[[nodiscard]] Verdict VerdictOf(const Session& session, Watched watched);

// For people: each violation with time, evidence and remedy, then the figures.
[[nodiscard]] std::string InText(const Verdict& verdict);
// For programs; README.md lists the fields.
[[nodiscard]] nlohmann::ordered_json InJson(const Verdict& verdict, Nanoseconds begin);
// For the page, as report/report.schema.json has it.
[[nodiscard]] nlohmann::ordered_json ForPage(const Verdict& verdict);

}  // namespace checker
