#pragma once

#include <string>
#include <vector>

#include "speed/series.h"

namespace bench::speed {

// What the driver is held to in one series, against the floor's figure of the same kind.
struct Goal {
  std::string series;
  std::string driverSide = kDriver;
  std::string what;           // for the report
  double median = 0;          // at most that many times the floor's; 0: no goal
  double p99 = 0;             // likewise
  double leastMedian = 0;     // at least that many times the floor's
  double absoluteMedian = 0;  // at most that much, in the series' unit
};

[[nodiscard]] const std::vector<Goal>& Goals();

// A goal beside what was measured.
struct Verdict {
  Goal goal;
  std::string unit;
  double floorMedian = 0, driverMedian = 0, floorP99 = 0, driverP99 = 0;
  // Of the ratios of neighbouring blocks' medians: a machine that is slower for a while is so for both.
  double medianRatio = 0, lowerQuartile = 0, upperQuartile = 0;

  [[nodiscard]] double P99Ratio() const { return driverP99 / floorP99; }
  // Whether it is met, or, with a `slack` above 1, missed by no more than that many times.
  [[nodiscard]] bool IsMet(double slack = 1.0) const;
  // The same of the median alone, which noise moves least.
  [[nodiscard]] bool IsMedianMet(double slack = 1.0) const;
};

// For the goals whose series were measured.
[[nodiscard]] std::vector<Verdict> Judge(const std::vector<Series>& all);

}  // namespace bench::speed
