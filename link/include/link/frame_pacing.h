#pragma once

#include <algorithm>
#include <cstdint>

namespace ombrel {

// The arithmetic of frame periods and pacing waits. Times in milliseconds; counts are of the performance counter,
// `frequency` is counts per second.

// No wait and no time-out is longer, whatever frame rate the companion asks for.
inline constexpr double kLongestWaitMs = 1000.0;

// 1000 / rate in single precision (compatibility.md, C12); infinite for a rate of 0.
[[nodiscard]] constexpr double FramePeriodMs(std::uint32_t framesPerSecond) {
  return 1000.0F / static_cast<float>(framesPerSecond);
}

// The period as a keyed mutex's time-out: whole milliseconds, truncated.
[[nodiscard]] constexpr std::uint32_t KeyedMutexTimeoutMs(double framePeriodMs) {
  return static_cast<std::uint32_t>(std::min(framePeriodMs, kLongestWaitMs));
}

// What is left of a frame period that began `elapsed` counts ago, from 0 to the period.
[[nodiscard]] constexpr double RemainingMs(double framePeriodMs, std::int64_t elapsed, std::int64_t frequency) {
  const double period = std::min(framePeriodMs, kLongestWaitMs);
  const double elapsedMs = static_cast<double>(elapsed) / static_cast<double>(frequency) * 1000.0;
  return std::clamp(period - elapsedMs, 0.0, period);
}

// How much of the remaining time to sleep: all but the last millisecond, in whole milliseconds.
[[nodiscard]] constexpr std::uint32_t SleepPartMs(double remainingMs) {
  return remainingMs - 1.0 > 0.0 ? static_cast<std::uint32_t>(remainingMs - 1.0) : 0;
}

// How much to sleep of what that leaves: all but the last millisecond again, which is less than one. A timer that ticks
// once a millisecond, and so rounds up, still ends before the deadline. 0 when there is nothing to sleep.
[[nodiscard]] constexpr double SleepRestMs(double leftMs) { return std::clamp(leftMs - 1.0, 0.0, 1.0); }

// Whether `elapsed` counts of polling make up `leftMs`, in single precision likewise.
[[nodiscard]] constexpr bool IsSpinOver(std::int64_t elapsed, std::int64_t frequency, double leftMs) {
  return static_cast<float>(elapsed) >= static_cast<float>(static_cast<double>(frequency) * leftMs / 1000.0);
}

}  // namespace ombrel
