#pragma once

#include <string>
#include <vector>

#include "companion/head_model.h"
#include "companion/rotation.h"
#include "companion/tracking_update.h"

namespace bench {

// One stretch of a head motion: ends at `to`, starting where the stretch before it ended.
struct MotionStretch {
  double seconds = 1;
  companion::YawPitch to;
};

// A head motion as a function of time: eased turns between given directions. Holds its end for ever.
class HeadMotion {
 public:
  HeadMotion(companion::YawPitch start, std::vector<MotionStretch> stretches);

  double Seconds() const { return seconds_; }
  companion::YawPitch At(double seconds) const;
  companion::Quat OrientationAt(double seconds) const { return companion::YawPitchToQuaternion(At(seconds)); }

 private:
  companion::YawPitch start_;
  std::vector<MotionStretch> stretches_;
  double seconds_ = 0;
};

// Straight, left, straight, right, straight, up, straight, down, straight, with a rest at each, in `seconds`.
HeadMotion SweepMotion(double seconds, float yaw, float pitch);
// No motion: one direction for `seconds`.
HeadMotion HoldMotion(double seconds, companion::YawPitch direction);

// The messages that put the head into a pose by one pose format: one message, or a position (format 5) and an
// orientation where the format has no place for a position. `model` is what the driver was told so far.
// The formats that carry no pose get a single message without one. Nothing for a format that is not known.
std::vector<companion::Bytes> EncodeHeadPose(companion::PoseFormat format, const companion::YawPitch& angles,
                                             const companion::Position& position, const companion::HeadModel& model);

}  // namespace bench
