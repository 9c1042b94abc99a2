#pragma once

#include <map>
#include <string>
#include <vector>

#include "checker/rules.h"

namespace checker {

// Collects who broke what, and keeps the first few of many.
class Findings {
 public:
  explicit Findings(Nanoseconds begin) : begin_(begin) {}

  void Add(Rule rule, Nanoseconds when, const std::string& evidence);
  [[nodiscard]] std::vector<Violation> Take() const;

 private:
  Nanoseconds begin_;
  std::map<Rule, Violation> violations_;
};

// Each judges its part of the session.
void JudgePipes(const Session& session, Findings& findings);
void JudgeMessages(const Session& session, Findings& findings);
void JudgePoses(const Session& session, Findings& findings);
void JudgeTextures(const Session& session, Findings& findings);
void JudgeEnd(const Session& session, Findings& findings);

// "1.234"
[[nodiscard]] std::string InMilliseconds(Nanoseconds span);
// "0x4000002A"
[[nodiscard]] std::string InHex(std::uint32_t value);

inline constexpr Nanoseconds kMillisecond = 1'000'000;
inline constexpr Nanoseconds kSecond = 1000 * kMillisecond;

}  // namespace checker
