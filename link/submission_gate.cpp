#include "link/submission_gate.h"

#include "platform/clock.h"

namespace ombrel {

bool SubmissionGate::Enter() {
  inside_.fetch_add(1);
  if (open_.load()) return true;
  Leave();
  return false;
}

void SubmissionGate::Drain() {
  // Polled, because the last one out cannot wake anybody: once the count is down, the gate may be gone.
  while (inside_.load() != 0) SleepMs(1);
}

}  // namespace ombrel
