#pragma once

#include <cstdint>

#include "link/wire.h"

namespace ombrel {

// What the companion is told of a vibration that began at `counter` (of the performance counter, `frequency` counts per
// second). Durations of 65.536 ms or more wrap (compatibility.md, C21); those that no int32 holds in microseconds, and
// those that are not a number, count as 0.
[[nodiscard]] HapticPulse MakeHapticPulse(std::int32_t controllerId, std::int64_t counter, std::int64_t frequency,
                                          float durationSeconds);

}  // namespace ombrel
