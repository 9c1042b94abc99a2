#pragma once

#include <chrono>
#include <thread>

namespace ombrel::test {

// Long enough for a sanitizer on a busy machine; a test that waits this long has failed.
inline constexpr std::chrono::milliseconds kPatience{20000};

// Waits until `ready` says so, at most for kPatience. For conditions that nobody announces.
template <typename Predicate>
[[nodiscard]] bool WaitUntil(Predicate ready) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!ready()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace ombrel::test
