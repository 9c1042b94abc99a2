#pragma once

#include <filesystem>
#include <fstream>
#include <mutex>

#include "runtime/frame_report.h"
#include "runtime/pose_log.h"

namespace bench {

/// One line per frame presented: when (performance counter, as in the companion's files), and the pose
/// that was rendered as twelve floats. Used by one thread.
class FrameCsv {
 public:
  /// Writes nothing if `file` is empty; throws std::runtime_error if it cannot be made.
  explicit FrameCsv(const std::filesystem::path& file);
  void Add(const FrameReport& report);

 private:
  std::ofstream stream_;
};

/// One line per head pose that came from the driver. Callable from any thread.
class PoseCsv {
 public:
  explicit PoseCsv(const std::filesystem::path& file);
  void Add(const PoseRecord& record);

 private:
  std::mutex mutex_;
  std::ofstream stream_;
  std::uint64_t number_ = 0;
};

}  // namespace bench
