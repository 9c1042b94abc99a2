#pragma once

#include <cstdint>

namespace ombrel {

// The performance counter, in counts, and its frequency, in counts per second.
[[nodiscard]] std::int64_t PerformanceCounter();
[[nodiscard]] std::int64_t PerformanceFrequency();

// Milliseconds of the multimedia timer. Wraps after 49.7 days.
[[nodiscard]] std::uint32_t TickMilliseconds();

void SleepMs(std::uint32_t milliseconds);

// Sleeps for part of a millisecond, rounded up to the system's timer; not at all for 0.
void SleepBelowMs(double milliseconds);

// Asks for the finest timer period the system offers, but no finer than 1 ms, for the rest of the process's life
// (compatibility.md, C32).
void RaiseTimerResolution();

}  // namespace ombrel
