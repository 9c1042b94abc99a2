#include "companion/pose_history.h"

#include <algorithm>
#include <cmath>

namespace companion {
namespace {

float Difference(const PoseMatrix& pose, const PoseSlot& slot) {
  float largest = 0;
  for (std::size_t i = 0; i < pose.size(); ++i) {
    const float difference = std::fabs(pose[i] - slot[i]);
    if (std::isnan(difference)) return difference;
    largest = std::max(largest, difference);
  }
  return largest;
}

bool LastRowStands(const PoseSlot& slot) { return slot[12] == 0 && slot[13] == 0 && slot[14] == 0 && slot[15] == 1; }

}  // namespace

PoseHistory::PoseHistory(std::int64_t startTicks, std::int64_t windowTicks) : windowTicks_(windowTicks) {
  poses_.push_back({0, startTicks, ToPoseMatrix(Quat{}, Position{0, OMBREL_DEFAULT_HEAD_HEIGHT, 0})});
}

void PoseHistory::Add(std::int64_t sentTicks, const PoseMatrix& pose) {
  poses_.push_back({LastNumber() + 1, sentTicks, pose});
  while (poses_.size() > 1 && poses_[1].sentTicks < sentTicks - windowTicks_) poses_.pop_front();
}

std::optional<PoseMatch> PoseHistory::Match(const PoseSlot& slot, float tolerance) const {
  if (!LastRowStands(slot)) return std::nullopt;
  std::optional<PoseMatch> best;
  for (const SentPose& sent : poses_) {
    const float difference = Difference(sent.pose, slot);
    if (!(difference <= tolerance)) continue;
    if (!best || difference <= best->difference) best = PoseMatch{sent, difference};
  }
  return best;
}

}  // namespace companion
