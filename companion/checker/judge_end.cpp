// Rules about how a connection ends.
#include <string>

#include "findings.h"

namespace checker {
namespace {

// Between the ends of the two pipes when somebody closes both.
constexpr Nanoseconds kBothWithin = 500 * kMillisecond;
// Before its process counts as ended, what a program leaves open is closed.
constexpr Nanoseconds kClosedByDeath = 100 * kMillisecond;
constexpr Nanoseconds kBusyAtMost = kSecond;

void JudgeHalfClosed(const Connection& connection, Nanoseconds recordingEnd, Findings& findings) {
  if (!connection.opened || !connection.inLost) return;
  const Nanoseconds rest = connection.End(recordingEnd) - *connection.inLost;
  if (rest <= kBothWithin) return;
  findings.Add(Rule::kClosesBoth, *connection.inLost,
               "In was closed, and Out stayed open for another " + InMilliseconds(rest));
}

void JudgeLeftBusy(const Connection& connection, Nanoseconds nextPipe, Findings& findings) {
  if (!connection.busySince || nextPipe - *connection.busySince <= kBusyAtMost) return;
  findings.Add(
      Rule::kClosesBoth, *connection.busySince,
      "Out was closed, but In still had its former client for " + InMilliseconds(nextPipe - *connection.busySince));
}

// A program that ends in an orderly way says so before the system closes what it left open; one that is killed or crashes
// does not.
bool DiedConnected(const Session& session, const Connection& connection) {
  if (!connection.opened || !connection.outLost || !session.processEnded) return false;
  if (session.detached) return *connection.outLost >= *session.detached;
  return *connection.outLost >= *session.processEnded - kClosedByDeath;
}

}  // namespace

void JudgeEnd(const Session& session, Findings& findings) {
  for (std::size_t i = 0; i < session.connections.size(); ++i) {
    const Connection& connection = session.connections[i];
    const bool isLast = i + 1 == session.connections.size();
    JudgeHalfClosed(connection, session.end, findings);
    JudgeLeftBusy(connection, isLast ? session.end : session.connections[i + 1].firstPipe, findings);
    if (isLast && DiedConnected(session, connection)) {
      findings.Add(Rule::kClosesBoth, *connection.outLost,
                   "the process ended with exit code " + InHex(session.exitCode) + " while the driver was connected");
    }
  }
  if (session.blockLeft) {
    findings.Add(Rule::kLetsGoOfBlock, *session.blockLeft, "the block still exists after the driver was unloaded");
  }
}

}  // namespace checker
