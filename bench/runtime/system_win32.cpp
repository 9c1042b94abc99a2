#include <windows.h>

#include "runtime/clock.h"
#include "runtime/thread_id.h"

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

std::uint32_t ThreadId() { return GetCurrentThreadId(); }

}  // namespace bench::runtime
