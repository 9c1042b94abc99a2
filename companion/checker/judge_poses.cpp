// Rules about the head's poses as a stream.
#include <ombrel/protocol.h>

#include <algorithm>

#include "findings.h"

namespace checker {
namespace {

constexpr Nanoseconds kFirstWithin = 2 * kSecond;
constexpr Nanoseconds kLongestPause = kSecond;
constexpr std::size_t kMostPerSecond = 1000;

std::vector<Nanoseconds> PoseTimes(const Connection& connection) {
  std::vector<Nanoseconds> times;
  for (const Message& message : connection.toDriver) {
    if (message.type == OMBREL_TRACKING_UPDATE) times.push_back(message.ended);
  }
  return times;
}

void JudgePauses(const std::vector<Nanoseconds>& times, Nanoseconds opened, Nanoseconds end, Findings& findings) {
  Nanoseconds last = opened, allowed = kFirstWithin;
  const auto judge = [&](Nanoseconds next) {
    if (next - last > allowed) findings.Add(Rule::kPosesKeepComing, last, "no pose for " + InMilliseconds(next - last));
  };
  for (const Nanoseconds time : times) {
    judge(time);
    last = time;
    allowed = kLongestPause;
  }
  judge(end);
}

// One finding for each second that is too full.
void JudgeRate(const std::vector<Nanoseconds>& times, Findings& findings) {
  for (std::size_t first = 0; first + kMostPerSecond < times.size();) {
    const auto past =
        std::lower_bound(times.begin() + static_cast<std::ptrdiff_t>(first), times.end(), times[first] + kSecond);
    const auto count = static_cast<std::size_t>(past - times.begin()) - first;
    if (count <= kMostPerSecond) {
      ++first;
      continue;
    }
    findings.Add(Rule::kPosesNotTooFast, times[first], std::to_string(count) + " poses within a second");
    first += count;
  }
}

// Only the session's very first: the former pose outlives connections.
void JudgeFirst(const Session& session, Findings& findings) {
  for (const Connection& connection : session.connections) {
    for (const Message& message : connection.toDriver) {
      const auto format = PoseFormat(message);
      if (!format || message.payload.size() < NeededBytes(message)) continue;
      if (*format == OMBREL_POSE_POSITION_ONLY) {
        findings.Add(Rule::kFirstPose, message.ended, "the first TrackingUpdate has format 5");
      }
      return;
    }
  }
}

}  // namespace

void JudgePoses(const Session& session, Findings& findings) {
  for (const Connection& connection : session.connections) {
    if (!connection.opened) continue;
    const auto times = PoseTimes(connection);
    JudgePauses(times, *connection.opened, connection.End(session.end), findings);
    JudgeRate(times, findings);
  }
  JudgeFirst(session, findings);
}

}  // namespace checker
