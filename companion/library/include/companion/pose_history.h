#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>

#include "companion/rotation.h"
#include "ombrel/protocol.h"

namespace companion {

// A pose that the driver was made to publish. Ticks are the performance counter's, or those of any other clock.
struct SentPose {
  std::uint64_t number = 0;
  std::int64_t sentTicks = 0;
  PoseMatrix pose = {};
};

// The 16 floats beside a frame: rows of four, the last row 0, 0, 0, 1.
using PoseSlot = std::array<float, 16>;
static_assert(sizeof(PoseSlot) == sizeof(OmbrelPoseSlot));

struct PoseMatch {
  SentPose sent;
  float difference = 0;  // largest difference of any of the twelve floats
};

// The poses that were sent lately, to tell which of them a frame was rendered with. For one thread at a time.
class PoseHistory {
 public:
  // Starts with the pose that the runtime has before any was sent, as number 0.
  // Poses sent within `windowTicks` before the newest are kept, and the newest that is older than that.
  PoseHistory(std::int64_t startTicks, std::int64_t windowTicks);

  void Add(std::int64_t sentTicks, const PoseMatrix& pose);

  // The kept pose closest to the slot (the newest of equals), if no float differs by more than `tolerance`
  // and the last row is 0, 0, 0, 1.
  std::optional<PoseMatch> Match(const PoseSlot& slot, float tolerance) const;

  std::uint64_t LastNumber() const { return poses_.back().number; }

 private:
  std::deque<SentPose> poses_;
  std::int64_t windowTicks_;
};

}  // namespace companion
