#pragma once

#include <vector>

namespace bench {

// The value that `share` (0 to 1) of the values do not exceed; 0 when there are none.
double Percentile(std::vector<double> values, double share);

}  // namespace bench
