#include "findings.h"

#include <cstdio>

namespace checker {
namespace {

constexpr std::size_t kKeptEvidence = 3;

}  // namespace

void Findings::Add(Rule rule, Nanoseconds when, const std::string& evidence) {
  Violation& violation = violations_.try_emplace(rule, Violation{rule, when, 0, {}}).first->second;
  violation.when = std::min(violation.when, when);
  ++violation.count;
  if (violation.evidence.size() >= kKeptEvidence) return;
  char time[32];
  std::snprintf(time, sizeof(time), "at %.3f s: ", static_cast<double>(when - begin_) / static_cast<double>(kSecond));
  violation.evidence.push_back(time + evidence);
}

std::vector<Violation> Findings::Take() const {
  std::vector<Violation> violations;
  for (const auto& [rule, violation] : violations_) violations.push_back(violation);
  return violations;
}

std::string InMilliseconds(Nanoseconds span) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f ms", static_cast<double>(span) / static_cast<double>(kMillisecond));
  return text;
}

std::string InHex(std::uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof(text), "0x%08X", value);
  return text;
}

std::vector<Rule> NotJudged(Watched watched) {
  if (watched == Watched::kBothSides) return {};
  return {Rule::kTakesFrames, Rule::kKey,       Rule::kReleasesItsOwn,
          Rule::kReadsHeld,   Rule::kReadsOnce, Rule::kHoldsBriefly};
}

std::vector<Violation> Judge(const Session& session, Watched watched) {
  Findings findings(session.begin);
  JudgePipes(session, findings);
  JudgeMessages(session, findings);
  JudgePoses(session, findings);
  if (watched == Watched::kBothSides) JudgeTextures(session, findings);
  JudgeEnd(session, findings);
  return findings.Take();
}

}  // namespace checker
