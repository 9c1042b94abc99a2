#pragma once

#include <cstdint>

// The performance counter: the same monotonic clock in every process of the machine, so that logs can be laid side by
// side. Any thread.
namespace bench {

[[nodiscard]] std::int64_t NowTicks();
[[nodiscard]] std::int64_t TicksPerSecond();

[[nodiscard]] double TicksToSeconds(std::int64_t ticks);
[[nodiscard]] double TicksToMilliseconds(std::int64_t ticks);
[[nodiscard]] std::int64_t SecondsToTicks(double seconds);

// Waits until the performance counter reaches `deadlineTicks`; returns at once if it has passed.
void SleepUntilTicks(std::int64_t deadlineTicks);

}  // namespace bench
