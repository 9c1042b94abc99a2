#include "runtime/clock.h"

#include <chrono>
#include <thread>

#include <windows.h>

namespace bench::runtime {

std::int64_t NowTicks() {
  LARGE_INTEGER now{};
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

std::int64_t TicksPerSecond() {
  static const std::int64_t frequency = [] {
    LARGE_INTEGER value{};
    QueryPerformanceFrequency(&value);
    return static_cast<std::int64_t>(value.QuadPart);
  }();
  return frequency;
}

double TicksToSeconds(std::int64_t ticks) { return static_cast<double>(ticks) / static_cast<double>(TicksPerSecond()); }

double TicksToMilliseconds(std::int64_t ticks) { return TicksToSeconds(ticks) * 1000.0; }

std::int64_t SecondsToTicks(double seconds) {
  return static_cast<std::int64_t>(seconds * static_cast<double>(TicksPerSecond()));
}

void SleepUntilTicks(std::int64_t deadlineTicks) {
  for (std::int64_t left = deadlineTicks - NowTicks(); left > 0; left = deadlineTicks - NowTicks()) {
    // Whole milliseconds are slept, the rest is given away in slices: a sleep may end late, never early.
    const double leftMs = TicksToMilliseconds(left);
    Sleep(leftMs > 1.0 ? static_cast<DWORD>(leftMs) : 0);
  }
}

}  // namespace bench::runtime
