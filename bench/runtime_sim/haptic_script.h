#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "runtime/fake_runtime.h"
#include "runtime/runtime_session.h"

namespace bench {

/// A pulse that the runtime shall ask a controller for.
struct HapticStep {
  double atSeconds = 0.0;
  double everySeconds = 0.0;   ///< 0: once
  std::size_t controller = 0;  ///< in the order in which controllers were activated
  float durationSeconds = 0.1F;
  float frequency = 0.0F;
  float amplitude = 1.0F;
};

/// Queues haptic events for the driver at their times. Used by one thread.
class HapticScript {
 public:
  HapticScript() = default;
  /// Throws std::runtime_error if the file is not a list of steps.
  explicit HapticScript(const std::filesystem::path& file);

  /// Queues what has become due; a step for a controller that is not there yet waits for it.
  void Advance(double seconds, FakeRuntime& runtime, const RuntimeSession& session);
  [[nodiscard]] std::uint64_t Sent() const { return sent_; }

 private:
  std::vector<HapticStep> steps_;
  std::uint64_t sent_ = 0;
};

}  // namespace bench
