#pragma once

#include <string>
#include <vector>

#include "speed/series.h"

namespace bench::speed {

// What something costs against its size.
struct Growth {
  std::vector<double> sizes;
  std::vector<double> costs;  // medians
  double perUnit = 0;         // of the line through them
  double fit = 0;             // how much of the differences the line explains, 0 to 1

  // "flat", "linear", or "neither": flat when the largest costs less than half as much again as the smallest.
  [[nodiscard]] std::string Kind() const;
};

// Of a series whose sides are numbers.
[[nodiscard]] Growth GrowthOf(const Series& series);

}  // namespace bench::speed
