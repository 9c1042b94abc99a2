#pragma once

#include <vector>

namespace bench {

// The smallest of `values` that at least `share` (0 to 1) of them do not exceed (nearest rank); 0 without values.
[[nodiscard]] double Percentile(std::vector<double> values, double share);

}  // namespace bench
