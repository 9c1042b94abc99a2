// Rules about the two textures, from the companion's calls and the driver's.
#include <algorithm>
#include <string>

#include "findings.h"
#include "frames.h"

namespace checker {
namespace {

constexpr Nanoseconds kFramesWithin = 2 * kSecond;
// A hold over the frame period is a breach by itself only when it is this long, since the system may stop a thread that
// holds a texture; so are more than a half of many, and more than a tenth that the driver waited for in vain.
constexpr Nanoseconds kAlwaysTooLong = 500 * kMillisecond;
constexpr std::size_t kManyHolds = 10;

void JudgeTakesFrames(const Session& session, Findings& findings) {
  for (const Connection& connection : session.connections) {
    const auto announced = AnnouncementOf(connection);
    if (!announced) continue;
    const Nanoseconds end = connection.End(session.end);
    const auto taken = std::find_if(session.holds.begin(), session.holds.end(), [&](const Hold& hold) {
      return std::count(announced->handles.begin(), announced->handles.end(), hold.handle) != 0;
    });
    const Nanoseconds first = taken == session.holds.end() ? end : taken->from;
    if (first - announced->when <= kFramesWithin) continue;
    findings.Add(Rule::kTakesFrames, announced->when,
                 "no texture was acquired for " + InMilliseconds(first - announced->when) + " after FrameSharingInfo");
  }
}

std::string CallName(const OddCall& call) {
  return std::string(call.isRelease ? "ReleaseSync" : "AcquireSync") + " of texture " + InHex(call.handle);
}

void JudgeCalls(const Session& session, Findings& findings) {
  for (const OddCall& call : session.otherKeys) {
    findings.Add(Rule::kKey, call.when, CallName(call) + " with key " + std::to_string(call.key));
  }
  for (const OddCall& call : session.refused) {
    const char* const what = call.isRelease ? ", which was not held" : ", which was held already";
    findings.Add(Rule::kReleasesItsOwn, call.when, CallName(call) + what + ": " + InHex(call.result));
  }
  for (const OddCall& call : session.readsUnheld) {
    findings.Add(Rule::kReadsHeld, call.when, "texture " + InHex(call.handle) + " was read while it was not held");
  }
}

void JudgeFreshness(const Session& session, Findings& findings) {
  for (const ReadFrame& frame : ReadFrames(session)) {
    if (frame.handedOver) continue;
    findings.Add(Rule::kReadsOnce, frame.hold->from,
                 "texture " + InHex(frame.hold->handle) + " was read with nothing new in it");
  }
}

struct LongHold {
  const Hold* hold;
  Nanoseconds span, period;
};

std::vector<LongHold> LongHolds(const Session& session) {
  const FramePeriods periods(session);
  std::vector<LongHold> holds;
  for (const Hold& hold : session.holds) {
    const Nanoseconds span = hold.to.value_or(session.end) - hold.from, period = periods.At(hold.from);
    if (span > period) holds.push_back({&hold, span, period});
  }
  std::stable_sort(holds.begin(), holds.end(), [](const LongHold& a, const LongHold& b) { return a.span > b.span; });
  return holds;
}

// The driver waited for this texture and drew without it.
bool HeldUpTheDriver(const Session& session, const Hold& hold) {
  const auto found = session.driverTimeouts.find(hold.handle);
  if (found == session.driverTimeouts.end()) return false;
  const auto first = std::lower_bound(found->second.begin(), found->second.end(), hold.from);
  return first != found->second.end() && *first <= hold.to.value_or(session.end);
}

// `holds`: those over the frame period, the longest first.
bool AreTooLong(const Session& session, const std::vector<LongHold>& holds) {
  if (holds.empty()) return false;
  if (holds.front().span > kAlwaysTooLong) return true;
  const std::size_t all = session.holds.size();
  const auto inVain = static_cast<std::size_t>(std::count_if(
      holds.begin(), holds.end(), [&](const LongHold& held) { return HeldUpTheDriver(session, *held.hold); }));
  return all >= kManyHolds && (2 * holds.size() > all || 10 * inVain > all);
}

void JudgeHolds(const Session& session, Findings& findings) {
  const std::vector<LongHold> holds = LongHolds(session);
  if (!AreTooLong(session, holds)) return;
  for (const auto& [hold, span, period] : holds) {
    findings.Add(Rule::kHoldsBriefly, hold->from,
                 "texture " + InHex(hold->handle) + " was held for " + InMilliseconds(span) +
                     ", with a frame period of " + InMilliseconds(period));
  }
}

}  // namespace

void JudgeTextures(const Session& session, Findings& findings) {
  JudgeTakesFrames(session, findings);
  JudgeCalls(session, findings);
  JudgeFreshness(session, findings);
  JudgeHolds(session, findings);
}

}  // namespace checker
