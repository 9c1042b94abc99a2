#pragma once

#include <cstdint>

#include "platform/clock.h"

namespace ombrel::test {

// When a message was made that may be dropped, but is not too old however busy the machine is.
[[nodiscard]] inline std::int64_t AnHourAhead() { return PerformanceCounter() + 3600 * PerformanceFrequency(); }

}  // namespace ombrel::test
