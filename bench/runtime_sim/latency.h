#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "csv_table.h"

namespace bench {

/// When something with a pose happened, in ticks of the counter that all processes share.
struct TimedPose {
  std::int64_t ticks = 0;
  std::array<float, 12> pose{};  ///< three rows of four
};

/// The rows of a table with the columns qpc and m00 to m23. Throws std::runtime_error if a column is missing.
[[nodiscard]] std::vector<TimedPose> ReadTimedPoses(const CsvTable& table);

/// Ticks from each sending of a pose by the companion to its arrival at the runtime. Both lists are in the
/// order of time. A pose has arrived with the first arrival, not yet another's, at or after its sending that
/// has its position (which the driver hands through) and, nearly, its rotation; poses that never arrived
/// are left out.
[[nodiscard]] std::vector<std::int64_t> PoseLatencies(std::span<const TimedPose> sent,
                                                      std::span<const TimedPose> arrived);

/// Ticks from each frame's Present to the moment when the companion held it, found by the pose that travels
/// with the frame. Frames whose pose was presented more than once cannot be told apart and are left out.
[[nodiscard]] std::vector<std::int64_t> FrameLatencies(std::span<const TimedPose> presented,
                                                       std::span<const TimedPose> held);

/// The same where no pose travels with frames: from the last Present before the companion held each frame.
/// Too short whenever the companion is more than a frame behind.
[[nodiscard]] std::vector<std::int64_t> FrameLatenciesByTime(std::span<const TimedPose> presented,
                                                             std::span<const TimedPose> held);

}  // namespace bench
