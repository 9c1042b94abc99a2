#pragma once

#include <cstdint>

#include "runtime/pose_matrix.h"

namespace bench {

// One frame of the compositor. Ticks are of the performance counter.
struct FrameReport {
  std::uint64_t index = 0;
  std::int64_t poseTicks = 0;       // when the pose that was rendered had come from the driver; 0: none had
  std::int64_t renderTicks = 0;     // when the pose was taken and rendering began
  std::int64_t presentTicks = 0;    // when Present was called
  std::int64_t presentedTicks = 0;  // when Present came back
  std::int64_t syncWaitTicks = 0;   // spent waiting for the keyed mutex of the texture that both sides use
  runtime::PoseMatrix pose{};       // the head's pose that was rendered and, in direct mode, submitted
  // Display intervals since the frame before in which nothing was handed to the driver: whole periods
  // between the two Present calls, less the one that belongs to the frame.
  std::uint32_t missedIntervals = 0;
};

// Display intervals without a frame in a gap of `gapTicks` between two frames, to the nearest whole number.
[[nodiscard]] std::uint32_t MissedIntervals(std::int64_t gapTicks, std::int64_t periodTicks);

}  // namespace bench
