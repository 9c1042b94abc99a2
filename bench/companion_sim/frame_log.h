#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

#include "companion/frame_reader.h"
#include "companion/pose_history.h"

namespace bench {

// Counts frames by what the pose beside them was, and writes a line of CSV for each. For one thread.
class FrameLog {
 public:
  // No lines if `csv` is empty; throws std::runtime_error when it cannot be made.
  explicit FrameLog(const std::filesystem::path& csv);

  // `match` is the sent pose that the slot agrees with, if any.
  void Add(std::uint64_t number, std::uint32_t connection, const companion::FrameInfo& frame,
           const std::optional<companion::PoseMatch>& match);

  std::uint64_t Frames() const { return matching_ + mismatching_ + unknown_ + withoutPose_; }
  std::uint64_t Matching() const { return matching_; }
  // Frames with a pose that was never sent, after the first that had one of ours.
  std::uint64_t Mismatching() const { return mismatching_; }
  // Frames with a pose that was never sent, before the first that had one of ours: a driver that was running
  // before this companion still has a pose from its predecessor.
  std::uint64_t Unknown() const { return unknown_; }
  // Frames with nothing beside them: the driver hands frames of the virtual display over like that.
  std::uint64_t WithoutPose() const { return withoutPose_; }
  // From a pose's sending to the holding of its frame, one value for each matching frame of a sent pose.
  const std::vector<double>& PoseAgesMs() const { return poseAgesMs_; }
  double SecondsBetweenFirstAndLast() const;

 private:
  std::uint64_t& CounterOf(const companion::FrameInfo& frame, bool matches);
  void WriteLine(std::uint64_t number, std::uint32_t connection, const companion::FrameInfo& frame,
                 const std::optional<companion::PoseMatch>& match);

  std::ofstream csv_;
  std::uint64_t matching_ = 0;
  std::uint64_t mismatching_ = 0;
  std::uint64_t unknown_ = 0;
  std::uint64_t withoutPose_ = 0;
  std::int64_t firstTicks_ = 0;
  std::int64_t lastTicks_ = 0;
  std::vector<double> poseAgesMs_;
};

}  // namespace bench
