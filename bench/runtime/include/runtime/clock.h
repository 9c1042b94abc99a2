#pragma once

#include <cstdint>

namespace bench::runtime {

/// The performance counter: the one clock that every process of the bench shares.
/// Callable from any thread.
[[nodiscard]] std::int64_t NowTicks();
[[nodiscard]] std::int64_t TicksPerSecond();

[[nodiscard]] double TicksToSeconds(std::int64_t ticks);
[[nodiscard]] double TicksToMilliseconds(std::int64_t ticks);
[[nodiscard]] std::int64_t SecondsToTicks(double seconds);

/// Waits until the performance counter reaches `deadlineTicks`; returns at once if it has passed.
void SleepUntilTicks(std::int64_t deadlineTicks);

}  // namespace bench::runtime
