#pragma once

#include <chrono>
#include <thread>

namespace ombrel::test {

// Long enough for a sanitizer on a busy machine; a test that waits this long has failed.
inline constexpr std::chrono::milliseconds kPatience{20000};

// Waits until `ready` says so, at most for kPatience. Polls: for conditions without an event.
template <typename Predicate>
[[nodiscard]] bool WaitUntil(Predicate ready) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!ready()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// Generous, for a busy machine under a sanitizer: what is looked for is a hang.
inline constexpr std::chrono::seconds kStopBound{3};

template <typename Stop>
[[nodiscard]] bool StopsWithinBound(Stop stop) {
  const auto begin = std::chrono::steady_clock::now();
  stop();
  return std::chrono::steady_clock::now() - begin < kStopBound;
}

}  // namespace ombrel::test
