// Rules about each message that the companion sends.
#include <ombrel/protocol.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <string>

#include "findings.h"

namespace checker {
namespace {

constexpr Nanoseconds kWholeWithin = 100 * kMillisecond;
constexpr double kLengthTolerance = 0.01;
// The runtime has 64 places, and the headset takes one.
constexpr std::size_t kMostControllers = 63;

std::string NameOf(const Message& message) {
  const auto format = PoseFormat(message);
  return TypeName(message.type) + (format ? " of format " + std::to_string(*format) : "");
}

void JudgeType(const Message& message, Findings& findings) {
  const auto format = PoseFormat(message);
  if (!IsToDriver(message.type)) {
    findings.Add(Rule::kKnownType, message.ended,
                 "a message of " + TypeName(message.type) + ", " + std::to_string(message.payload.size()) + " bytes");
  } else if (format && !IsKnownPoseFormat(*format)) {
    findings.Add(Rule::kKnownType, message.ended, "a TrackingUpdate of format " + std::to_string(*format));
  }
}

void JudgeNumbers(const Message& message, Findings& findings) {
  const std::vector<double> numbers = Numbers(message);
  const auto bad = std::count_if(numbers.begin(), numbers.end(), [](double number) { return !std::isfinite(number); });
  if (bad != 0) {
    findings.Add(Rule::kFinite, message.ended,
                 "a " + NameOf(message) + " with " + std::to_string(bad) + " numbers that are not finite");
  } else if (const double error = LengthError(message); error > kLengthTolerance) {
    findings.Add(Rule::kUnitLength, message.ended,
                 "a " + NameOf(message) + " whose rotation is " + std::to_string(error) + " off unit length");
  }
}

void JudgeOne(const Message& message, Findings& findings) {
  if (message.ended - message.begun > kWholeWithin) {
    findings.Add(Rule::kWholeAtOnce, message.begun,
                 "a " + NameOf(message) + " took " + InMilliseconds(message.ended - message.begun) + " to come");
  }
  JudgeType(message, findings);
  if (message.payload.size() < NeededBytes(message)) {
    return findings.Add(Rule::kLongEnough, message.ended,
                        "a " + NameOf(message) + " of " + std::to_string(message.payload.size()) + " bytes, where " +
                            std::to_string(NeededBytes(message)) + " are needed");
  }
  JudgeNumbers(message, findings);
  OmbrelFramerateUpdate rate{};
  if (message.type != OMBREL_FRAMERATE_UPDATE) return;
  std::memcpy(&rate, message.payload.data(), sizeof(rate));
  if (rate.framesPerSecond == 0) findings.Add(Rule::kFrameRate, message.ended, "a FramerateUpdate of 0");
}

// A message that the connection's end cut off, or whose rest nobody waits for any more.
void JudgeRest(const Connection& connection, Nanoseconds recordingEnd, Findings& findings) {
  if (const auto length = connection.unread.TooLong()) {
    findings.Add(Rule::kNotTooLong, connection.unread.UnfinishedSince(),
                 "a header announces " + std::to_string(*length) + " bytes");
  } else if (connection.unread.Unfinished() != 0) {
    const Nanoseconds waited = connection.End(recordingEnd) - connection.unread.UnfinishedSince();
    findings.Add(Rule::kWholeAtOnce, connection.unread.UnfinishedSince(),
                 std::to_string(connection.unread.Unfinished()) + " bytes of a message that did not go on for " +
                     InMilliseconds(waited));
  }
}

void JudgeControllers(const Session& session, Findings& findings) {
  std::set<std::uint32_t> ids;
  for (const Connection& connection : session.connections) {
    for (const Message& message : connection.toDriver) {
      if (message.type != OMBREL_CONTROLLER_UPDATE || message.payload.size() < NeededBytes(message)) continue;
      std::uint32_t id = 0;
      std::memcpy(&id, message.payload.data(), sizeof(id));
      if (ids.insert(id).second && ids.size() > kMostControllers) {
        findings.Add(Rule::kControllers, message.ended,
                     "controller " + std::to_string(id) + " is number " + std::to_string(ids.size()));
      }
    }
  }
}

}  // namespace

void JudgeMessages(const Session& session, Findings& findings) {
  for (const Connection& connection : session.connections) {
    for (const Message& message : connection.toDriver) JudgeOne(message, findings);
    JudgeRest(connection, session.end, findings);
  }
  JudgeControllers(session, findings);
}

}  // namespace checker
