#include "runtime/frame_report.h"

#include <cmath>

namespace bench {

std::uint32_t MissedIntervals(std::int64_t gapTicks, std::int64_t periodTicks) {
  const double intervals = std::round(static_cast<double>(gapTicks) / static_cast<double>(periodTicks));
  return intervals > 1.0 ? static_cast<std::uint32_t>(intervals) - 1 : 0;
}

}  // namespace bench
