#pragma once

#include <chrono>
#include <cstdint>

namespace bench::speed {

// Processor time that the calling thread has used, in nanoseconds. What other programs do to the machine shows in it
// far less than in the time that passes. Under Wine it is as fine as the host's own clock; on Windows no finer than a
// tick of the scheduler.
[[nodiscard]] std::int64_t ThreadNanoseconds();

// The performance counter, in nanoseconds.
[[nodiscard]] inline std::int64_t WallNanoseconds() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace bench::speed
