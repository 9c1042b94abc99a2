#pragma once

#include <array>
#include <string>
#include <string_view>
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

struct RuleText {
  Rule rule;
  std::string_view title;   // as the page has it
  std::string_view remedy;  // what to change in a companion that breaks it
};

[[nodiscard]] const std::array<RuleText, 22>& Rules();
[[nodiscard]] const RuleText& TextOf(Rule rule);

// A rule that was broken, once or often.
struct Violation {
  Rule rule;
  Nanoseconds when = 0;               // for the first time
  std::size_t count = 0;              // how often
  std::vector<std::string> evidence;  // of the first few times
};

// What is known besides the session: whether the companion's textures were watched. Without that, the rules about them
// are not judged.
enum class Watched { kDriver, kBothSides };

// In the order of the rules.
[[nodiscard]] std::vector<Violation> Judge(const Session& session, Watched watched);

}  // namespace checker
