#pragma once

#include <atomic>
#include <cstdint>

#include "link/frame_pacing.h"
#include "link/submission_gate.h"
#include "platform/sync.h"

namespace ombrel {

// Holds the runtime's threads to the frame rate that the companion asks for.
class FramePacer {
 public:
  FramePacer() { pacing_.Open(); }

  // Reader thread.
  void SetFramesPerSecond(std::uint32_t framesPerSecond);

  // Any thread.
  [[nodiscard]] std::uint32_t FramesPerSecond() const { return framesPerSecond_; }
  // How long a frame may wait for a keyed mutex: its period.
  [[nodiscard]] std::uint32_t AcquireTimeoutMs() const { return KeyedMutexTimeoutMs(framePeriodMs_); }

  // The runtime's threads. Sleeps, then spins, to the end of the frame period that began when the last wait ended. At
  // most one second; ends early when the link goes down.
  void WaitForNextFrame();

  // Ends the waits under way.
  void EndWaits() { linkDropped_.WakeAll(); }
  // For good: ends the waits under way and those to come. Drain then waits until nobody is in one.
  void Close();
  void Drain() { pacing_.Drain(); }

 private:
  std::atomic<std::uint32_t> framesPerSecond_{60};
  std::atomic<double> framePeriodMs_{FramePeriodMs(60)};
  std::atomic<std::int64_t> lastPacingEnd_{0};  // performance counter
  SubmissionGate pacing_;
  WakeSignal linkDropped_;
};

}  // namespace ombrel
