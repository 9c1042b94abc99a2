#pragma once

#include <array>
#include <string>
#include <vector>

#include "checker/session.h"

// The numbered rules of docs/protocol.md, and who breaks them.
namespace checker {

enum class Rule {
  kProcess = 1,
  kBothPipes,
  kLongEnough,
  kNotTooLong,
  kWholeAtOnce,
  kKnownType,
  kFinite,
  kUnitLength,
  kPosesKeepComing,
  kPosesNotTooFast,
  kFirstPose,
  kFrameRate,
  kControllers,
  kReads,
  kTakesFrames,
  kKey,
  kReleasesItsOwn,
  kReadsHeld,
  kReadsOnce,
  kHoldsBriefly,
  kClosesBoth,
  kLetsGoOfBlock,
};

inline constexpr std::size_t kRules = 22;

struct RuleText {
  Rule rule = Rule::kProcess;
  std::string title;   // as the page has it
  std::string remedy;  // what to change in a companion that breaks it
};

[[nodiscard]] const std::array<RuleText, kRules>& Rules();
[[nodiscard]] const RuleText& TextOf(Rule rule);

// A rule that was broken, once or often.
struct Violation {
  Rule rule;
  Nanoseconds when = 0;               // for the first time
  std::size_t count = 0;              // how often
  std::vector<std::string> evidence;  // of the first few times
};

// Which sides were watched.
enum class Watched { kDriver, kBothSides };

// The rules that then are not judged, in their order.
[[nodiscard]] std::vector<Rule> NotJudged(Watched watched);

// In the order of the rules.
[[nodiscard]] std::vector<Violation> Judge(const Session& session, Watched watched);

}  // namespace checker
