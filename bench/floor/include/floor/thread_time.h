#pragma once

#include <cstdint>

namespace bench::floor {

// Processor time that the calling thread has used, in nanoseconds. What other programs do to the machine shows in it
// far less than in the time that passes. Under Wine it is as fine as the host's own clock; on Windows no finer than a
// tick of the scheduler.
[[nodiscard]] std::int64_t ThreadNanoseconds();

// The performance counter, in nanoseconds.
[[nodiscard]] std::int64_t WallNanoseconds();

}  // namespace bench::floor
