#include "runtime/percentile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace bench::runtime {

double Percentile(std::vector<double> values, double share) {
  if (values.empty()) {
    return 0.0;
  }
  const double rank = std::ceil(share * static_cast<double>(values.size()));
  const auto index = static_cast<std::ptrdiff_t>(std::max(rank, 1.0)) - 1;
  std::nth_element(values.begin(), values.begin() + index, values.end());
  return values[static_cast<std::size_t>(index)];
}

}  // namespace bench::runtime
