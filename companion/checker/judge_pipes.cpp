// Rules about the process, the pipes and how they are read.
#include <ombrel/protocol.h>

#include <string>

#include "findings.h"

namespace checker {
namespace {

// What the driver does not begin to write in this time is dropped.
constexpr Nanoseconds kReadWithin = 250 * kMillisecond;

void JudgeSecondPipe(const Connection& connection, Findings& findings) {
  if (connection.secondPipeFailures == 0) return;
  std::string evidence = "In was opened, but Out failed with error " + std::to_string(connection.secondPipeError);
  evidence += connection.opened
                  ? ", and came " + InMilliseconds(*connection.opened - connection.firstPipe) + " after In"
                  : ", and never came";
  findings.Add(Rule::kBothPipes, connection.firstPipe, evidence);
}

// Where drains are not watched, only a pipe that is full shows that nobody reads: writing then takes long.
std::string UnreadEvidence(const Connection& connection, const DriverMessage& sent, Nanoseconds end) {
  const Message& message = sent.message;
  const std::string name = "a " + TypeName(message.type);
  if (message.ended - message.begun > kReadWithin) {
    return name + " took " + InMilliseconds(message.ended - message.begun) + " to write, since In was full";
  }
  if (!connection.drainsSeen) return {};
  if (sent.read && *sent.read - message.ended > kReadWithin) {
    return name + " was read " + InMilliseconds(*sent.read - message.ended) + " after it was written";
  }
  if (!sent.read && end - message.ended > kReadWithin) {
    return name + " was not read in the " + InMilliseconds(end - message.ended) + " until the connection's end";
  }
  return {};
}

}  // namespace

void JudgePipes(const Session& session, Findings& findings) {
  if (!session.processFound) {
    findings.Add(Rule::kProcess, session.begin, "no process has the name " OMBREL_PROCESS_NAME);
  }
  for (const Connection& connection : session.connections) {
    JudgeSecondPipe(connection, findings);
    const Nanoseconds end = connection.End(session.end);
    for (const DriverMessage& sent : connection.fromDriver) {
      const std::string evidence = UnreadEvidence(connection, sent, end);
      if (!evidence.empty()) findings.Add(Rule::kReads, sent.message.ended, evidence);
    }
  }
}

}  // namespace checker
