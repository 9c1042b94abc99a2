#pragma once

#include <chrono>
#include <thread>

namespace bench {

// Polls `condition` every millisecond until it holds or `timeout` has passed, and says whether it held. For conditions
// outside the stand-ins (a process, a file, the driver's threads).
template <typename Condition>
[[nodiscard]] bool WaitUntil(Condition condition, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace bench
