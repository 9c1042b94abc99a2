#pragma once

#include <windows.h>

#include <cstdint>

namespace companion {

// In ticks of QueryPerformanceFrequency.
inline std::int64_t CounterNow() {
  LARGE_INTEGER now;
  QueryPerformanceCounter(&now);
  return now.QuadPart;
}

}  // namespace companion
