#pragma once

#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "companion/head_model.h"
#include "companion/pipe_server.h"
#include "companion/pose_history.h"
#include "motion/head_motion.h"

namespace bench {

// The pipes together with a memory of what was sent over them, so that a frame's pose can be told to be one of ours.
// All methods may be called on any thread.
class DriverLink {
 public:
  // `posesCsv` gets a line per pose, unless it is empty; throws std::runtime_error when it cannot be made.
  explicit DriverLink(const std::filesystem::path& posesCsv);

  companion::PipeServer& Pipes() { return pipes_; }
  const companion::PipeServer& Pipes() const { return pipes_; }

  // Sends whole messages, remembering the poses among them. False when there is no connection.
  bool Send(std::span<const std::uint8_t> message);
  // Sends the head's pose in the given format. Every position differs a little from the last, so that no two
  // poses are the same where the format has room for one.
  bool SendHead(companion::PoseFormat format, const companion::YawPitch& angles);

  std::optional<companion::PoseMatch> Match(const companion::PoseSlot& slot) const;
  std::uint64_t PosesSent() const;
  // What the driver publishes now, as far as the protocol tells.
  companion::PoseMatrix PublishedPose() const;

 private:
  bool SendRemembered(std::span<const std::uint8_t> message);
  void LogPose(std::int64_t ticks);

  companion::PipeServer pipes_;
  mutable std::mutex mutex_;  // guards what was sent; never held while a pipe blocks
  std::mutex orderMutex_;     // messages are remembered in the order in which they are sent
  companion::HeadModel model_;
  companion::PoseHistory history_;
  std::uint64_t headPoses_ = 0;
  std::ofstream posesCsv_;
};

}  // namespace bench
