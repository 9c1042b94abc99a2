#include <unistd.h>

#include <chrono>

#include "runtime/clock.h"
#include "runtime/thread_id.h"

namespace bench::runtime {

std::int64_t NowTicks() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::int64_t TicksPerSecond() { return 1'000'000'000; }

std::uint32_t ThreadId() { return static_cast<std::uint32_t>(gettid()); }

}  // namespace bench::runtime
