#pragma once

#include <cstdint>

// The performance counter: the same clock in every process of the machine, so that logs can be laid side by side.
namespace bench {

std::int64_t NowTicks();
std::int64_t TicksPerSecond();

inline double TicksToSeconds(std::int64_t ticks) {
  return static_cast<double>(ticks) / static_cast<double>(TicksPerSecond());
}

}  // namespace bench
