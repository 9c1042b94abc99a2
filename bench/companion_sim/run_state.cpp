#include "run_state.h"

#include <algorithm>

namespace bench {

using namespace companion;

void RunState::End() {
  const std::scoped_lock lock(mutex_);
  ended_ = true;
  ending_.notify_all();
}

void RunState::SleepUntil(std::chrono::steady_clock::time_point until) {
  std::unique_lock lock(mutex_);
  if (ending_.wait_until(lock, until, [this] { return ended_.load(); })) throw RunEnded();
}

void RunState::Sleep(double seconds) {
  SleepUntil(std::chrono::steady_clock::now() +
             std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(seconds)));
}

void RunState::AddHaptic(const HapticPulse& pulse) {
  const std::scoped_lock lock(mutex_);
  haptics_.push_back(pulse);
  ++hapticsReceived_;
}

bool RunState::TakeHaptic(std::uint32_t controllerId, std::uint16_t durationMicroseconds) {
  const std::scoped_lock lock(mutex_);
  const auto found = std::find_if(haptics_.begin(), haptics_.end(), [&](const HapticPulse& pulse) {
    return pulse.controllerId == controllerId && pulse.durationMicroseconds == durationMicroseconds;
  });
  if (found == haptics_.end()) return false;
  haptics_.erase(found);
  return true;
}

void RunState::Fail(std::string reason) {
  const std::scoped_lock lock(mutex_);
  failures_.push_back(std::move(reason));
}

std::vector<std::string> RunState::Failures() const {
  const std::scoped_lock lock(mutex_);
  return failures_;
}

}  // namespace bench
