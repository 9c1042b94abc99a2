#pragma once

#include <cstdint>
#include <istream>
#include <span>
#include <vector>

#include "companion/rotation.h"

namespace bench {

// A pose and when something happened to it, in ticks of the performance counter.
struct TimedPose {
  std::int64_t ticks = 0;
  PoseMatrix pose = {};
};

// A log of one program, in order of time.
struct TimedPoses {
  std::int64_t ticksPerSecond = 1;
  std::vector<TimedPose> poses;
};

// Reads CSV by the names of its columns: qpc, qpc_frequency and m00 to m23; lines without a number there are left out.
// Throws std::runtime_error when a column is missing.
TimedPoses ReadTimedPoses(std::istream& csv);

// Only the first of poses that came several times in a row.
TimedPoses WithoutRepeats(const TimedPoses& log);

// How long each of `later` came after its pose was seen in `earlier`: the closest pose of the ten seconds before it
// that differs by no more than `tolerance` in any float, the newest of equals. Milliseconds; those that have no such
// pose are left out.
std::vector<double> DelaysMs(const TimedPoses& earlier, const TimedPoses& later, float tolerance);

}  // namespace bench
