#include "base/percentile.h"

#include <algorithm>
#include <cmath>

namespace bench {

double Percentile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  const double rank = std::ceil(share * static_cast<double>(values.size()));
  const auto index = static_cast<std::size_t>(std::clamp(rank - 1, 0.0, static_cast<double>(values.size() - 1)));
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(index), values.end());
  return values[index];
}

}  // namespace bench
