#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "runtime/frame_report.h"

namespace bench {

/// Figures of a number of frames.
struct FrameFigures {
  std::uint64_t frames = 0;
  double seconds = 0.0;               ///< from the first Present to the last
  std::uint64_t missedIntervals = 0;  ///< display intervals without a frame
  double poseAgeMedianMs = 0.0;       ///< from a pose's arrival to the rendering with it
  double poseAgeP99Ms = 0.0;
  double presentMedianMs = 0.0;  ///< how long the driver's Present took
  double presentP99Ms = 0.0;
  [[nodiscard]] double FramesPerSecond() const {
    return seconds > 0.0 ? static_cast<double>(frames - 1) / seconds : 0.0;
  }
};

/// Gathers frames, and tells the figures of all of them and of those since the last look.
/// Add is called on the compositor's thread, the others on any.
class FrameStatistics {
 public:
  void Add(const FrameReport& report);
  [[nodiscard]] FrameFigures All() const;
  /// Of the frames since the last call.
  [[nodiscard]] FrameFigures TakeRecent();
  [[nodiscard]] std::uint64_t Frames() const;

 private:
  mutable std::mutex mutex_;
  std::vector<FrameReport> frames_;
  std::size_t seen_ = 0;
};

}  // namespace bench
