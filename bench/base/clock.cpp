#include "base/clock.h"

#include <chrono>
#include <thread>

namespace bench {

double TicksToSeconds(std::int64_t ticks) { return static_cast<double>(ticks) / static_cast<double>(TicksPerSecond()); }

double TicksToMilliseconds(std::int64_t ticks) { return TicksToSeconds(ticks) * 1000.0; }

std::int64_t SecondsToTicks(double seconds) {
  return static_cast<std::int64_t>(seconds * static_cast<double>(TicksPerSecond()));
}

// Sleeps whole milliseconds and yields its time slices for the rest: it may end late, never early.
void SleepUntilTicks(std::int64_t deadlineTicks) {
  for (std::int64_t left = deadlineTicks - NowTicks(); left > 0; left = deadlineTicks - NowTicks()) {
    const double leftMs = TicksToMilliseconds(left);
    if (leftMs > 1.0) {
      std::this_thread::sleep_for(std::chrono::milliseconds(static_cast<int>(leftMs)));
    } else {
      std::this_thread::yield();
    }
  }
}

}  // namespace bench
