#pragma once

#include <cstdint>

namespace ombrel {

// The arithmetic of frame periods and pacing waits. Times in milliseconds; counts are of the performance counter,
// `frequency` is counts per second.

// No wait and no time-out is longer, whatever frame rate the companion asks for.
inline constexpr double kLongestWaitMs = 1000.0;

// 1000 / rate in single precision (compatibility.md, C12); infinite for a rate of 0.
[[nodiscard]] double FramePeriodMs(std::uint32_t framesPerSecond);

// The period as a keyed mutex's time-out: whole milliseconds, truncated.
[[nodiscard]] std::uint32_t KeyedMutexTimeoutMs(double framePeriodMs);

// What is left of a frame period that began `elapsed` counts ago, from 0 to the period.
[[nodiscard]] double RemainingMs(double framePeriodMs, std::int64_t elapsed, std::int64_t frequency);

// How much of the remaining time to sleep: all but the last millisecond, in whole milliseconds.
[[nodiscard]] std::uint32_t SleepPartMs(double remainingMs);

// How much to sleep of what that leaves: all but the last millisecond again, which is less than one. A timer that ticks
// once a millisecond, and so rounds up, still ends before the deadline. 0 when there is nothing to sleep.
[[nodiscard]] double SleepRestMs(double leftMs);

// Whether `elapsed` counts of polling make up `leftMs`, in single precision likewise.
[[nodiscard]] bool IsSpinOver(std::int64_t elapsed, std::int64_t frequency, double leftMs);

}  // namespace ombrel
