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

enum class Outcome {
  kMet,
  kUnclear,  // of the median met; of p99 not, but another run of as many values might well meet it
  kMissed,
};

// A goal beside what was measured.
struct Verdict {
  Goal goal;
  std::string unit;
  double floorMedian = 0, driverMedian = 0, floorP99 = 0, driverP99 = 0;
  // Of the ratios of neighbouring blocks' medians: a machine that is slower for a while is so for both.
  double medianRatio = 0, lowerQuartile = 0, upperQuartile = 0;
  // The ratio that 19 of 20 runs like this one would exceed, by drawing blocks again and again from those there are (the
  // bootstrap). A p99 rests on a few values.
  double leastP99Ratio = 0;

  [[nodiscard]] double P99Ratio() const { return driverP99 / floorP99; }
  // Whether it is met, or, with a `slack` above 1, missed by no more than that many times.
  [[nodiscard]] bool IsMet(double slack = 1.0) const;
  [[nodiscard]] Outcome Result() const;
  // Met by the median alone, which noise moves least.
  [[nodiscard]] bool IsMedianMet(double slack = 1.0) const;
};

// For the goals whose series were measured.
[[nodiscard]] std::vector<Verdict> Judge(const std::vector<Series>& all);

}  // namespace bench::speed
