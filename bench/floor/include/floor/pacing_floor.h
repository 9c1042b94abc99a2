#pragma once

#include <cstdint>

namespace bench::floor {

// A pacing wait and nothing else: Sleep for all but the last millisecond, then the performance counter polled to the
// end of the period. For one thread.
class PacingFloor {
 public:
  explicit PacingFloor(double periodMs);
  void Wait();

 private:
  std::int64_t frequency_;
  std::int64_t period_;  // counts
  std::int64_t last_;    // counts
};

}  // namespace bench::floor
