#include <chrono>

#include "base/clock.h"

namespace bench {

std::int64_t NowTicks() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::int64_t TicksPerSecond() { return 1'000'000'000; }

}  // namespace bench
