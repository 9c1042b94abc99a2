// Rules about how a connection ends.
#include <string>

#include "findings.h"

namespace checker {
namespace {

// Between the ends of the two pipes when somebody closes both.
constexpr Nanoseconds kBothWithin = 500 * kMillisecond;
// Before its process counts as ended, what a program leaves open is closed.
constexpr Nanoseconds kClosedByDeath = 100 * kMillisecond;
constexpr std::uint32_t kBrokenPipe = 109, kFirstException = 0xC0000000;
constexpr Nanoseconds kBusyAtMost = kSecond;

void JudgeHalfClosed(const Connection& connection, Nanoseconds recordingEnd, Findings& findings) {
  if (!connection.opened || !connection.inLost) return;
  const Nanoseconds rest = connection.End(recordingEnd) - *connection.inLost;
  if (rest <= kBothWithin) return;
  findings.Add(Rule::kClosesBoth, *connection.inLost,
               "In was closed, and Out stayed open for another " + InMilliseconds(rest));
}

// Of a program that runs on: one that ends may take its time after it has disconnected.
void JudgeLeftBusy(const Connection& connection, Findings& findings) {
  if (!connection.busySince) return;
  const Nanoseconds span = *connection.busyUntil - *connection.busySince;
  if (span <= kBusyAtMost) return;
  findings.Add(Rule::kClosesBoth, *connection.busySince,
               "Out was closed, but In, with its former client or with nobody who listens, could not be opened for " +
                   InMilliseconds(span));
}

// A program that ends in an orderly way is asked for its pipes before the system closes them. One that crashes is not: then
// the driver's read fails together with the process, and not because the pipe was disconnected. One that was ended from
// outside, or whose side was not watched, gets the benefit of the doubt: it may have closed its pipes just before.
bool EndedConnected(const Session& session, const Connection& connection) {
  if (session.detached) return session.connectedWhenDetached;
  return session.processEnded && session.exitCode >= kFirstException && connection.outError == kBrokenPipe &&
         *connection.outLost >= *session.processEnded - kClosedByDeath;
}

}  // namespace

void JudgeEnd(const Session& session, Findings& findings) {
  for (const Connection& connection : session.connections) {
    const bool isLast = &connection == &session.connections.back();
    JudgeHalfClosed(connection, session.end, findings);
    if (!isLast || !session.processEnded) JudgeLeftBusy(connection, findings);
    if (isLast && connection.opened && EndedConnected(session, connection)) {
      findings.Add(Rule::kClosesBoth, connection.End(session.end),
                   "the process ended with exit code " + InHex(session.exitCode) + " while the driver was connected");
    }
  }
  if (session.blockLeft) {
    findings.Add(Rule::kLetsGoOfBlock, *session.blockLeft, "the block still exists after the driver was unloaded");
  }
}

}  // namespace checker
