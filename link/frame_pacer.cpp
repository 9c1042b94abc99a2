#include "link/frame_pacer.h"

#include "platform/clock.h"

namespace ombrel {
namespace {

// Spins, because a sleep may end a whole tick of the system's timer late.
void SpinFor(double milliseconds) {
  if (milliseconds <= 0.0) return;
  const std::int64_t frequency = PerformanceFrequency();
  const std::int64_t begin = PerformanceCounter();
  while (!IsSpinOver(PerformanceCounter() - begin, frequency, milliseconds)) {
  }
}

}  // namespace

void FramePacer::SetFramesPerSecond(std::uint32_t framesPerSecond) {
  framesPerSecond_ = framesPerSecond;
  framePeriodMs_ = FramePeriodMs(framesPerSecond);
}

void FramePacer::WaitForNextFrame() {
  // Noted before the gate is entered: a Close in between then ends the wait at once.
  const std::uint32_t seen = linkDropped_.Generation();
  const SubmissionGate::Pass pass(pacing_);
  if (!pass) return;
  const std::int64_t begin = PerformanceCounter();
  const double remaining = RemainingMs(framePeriodMs_, begin - lastPacingEnd_, PerformanceFrequency());
  const auto left = [=] { return RemainingMs(remaining, PerformanceCounter() - begin, PerformanceFrequency()); };
  const std::uint32_t sleepMs = SleepPartMs(remaining);
  const bool isReleased = sleepMs > 0 && linkDropped_.WaitFor(seen, sleepMs);
  if (!isReleased) {
    SleepBelowMs(SleepRestMs(left()));
    SpinFor(left());
  }
  lastPacingEnd_ = PerformanceCounter();
}

void FramePacer::Close() {
  pacing_.Close();
  EndWaits();
}

}  // namespace ombrel
