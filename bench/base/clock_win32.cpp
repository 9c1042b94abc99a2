#include <windows.h>

#include "base/clock.h"

namespace bench {

std::int64_t NowTicks() {
  LARGE_INTEGER now{};
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

std::int64_t TicksPerSecond() {
  static const std::int64_t frequency = [] {
    LARGE_INTEGER counted{};
    QueryPerformanceFrequency(&counted);
    return counted.QuadPart;
  }();
  return frequency;
}

}  // namespace bench
