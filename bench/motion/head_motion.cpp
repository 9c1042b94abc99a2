#include "motion/head_motion.h"

#include <algorithm>
#include <cmath>

namespace bench {

using namespace companion;

namespace {

constexpr double kPi = 3.14159265358979323846;

// The gyroscope readings that turn the filter's present orientation into the wanted one in one step.
SensorReadings TurnTo(const Quat& wanted, const SensorFollower& filter) {
  const Quat turn = Multiply(Conjugate(Normalise(filter.Orientation())), wanted);
  const float scale = 2 * OMBREL_SENSOR_RATE / turn.w;
  return {.gyroscope = {turn.x * scale, turn.y * scale, turn.z * scale}};
}

YawPitch Blend(const YawPitch& from, const YawPitch& to, double share) {
  const auto eased = static_cast<float>((1 - std::cos(kPi * share)) / 2);
  return {from.yaw + (to.yaw - from.yaw) * eased, from.pitch + (to.pitch - from.pitch) * eased};
}

}  // namespace

HeadMotion::HeadMotion(YawPitch start, std::vector<MotionStretch> stretches)
    : start_(start), stretches_(std::move(stretches)) {
  for (const MotionStretch& stretch : stretches_) seconds_ += stretch.seconds;
}

YawPitch HeadMotion::At(double seconds) const {
  YawPitch from = start_;
  double left = std::max(0.0, seconds);
  for (const MotionStretch& stretch : stretches_) {
    if (left < stretch.seconds) return Blend(from, stretch.to, left / stretch.seconds);
    left -= stretch.seconds;
    from = stretch.to;
  }
  return from;
}

HeadMotion SweepMotion(double seconds, float yaw, float pitch) {
  const YawPitch stops[] = {{yaw, 0}, {0, 0}, {-yaw, 0}, {0, 0}, {0, pitch}, {0, 0}, {0, -pitch}, {0, 0}};
  constexpr double kRestShare = 0.25;
  const double perStop = seconds / static_cast<double>(std::size(stops));
  std::vector<MotionStretch> stretches;
  for (const YawPitch& stop : stops) {
    stretches.push_back({perStop * (1 - kRestShare), stop});
    stretches.push_back({perStop * kRestShare, stop});
  }
  return HeadMotion({}, std::move(stretches));
}

HeadMotion HoldMotion(double seconds, YawPitch direction) { return HeadMotion(direction, {{seconds, direction}}); }

std::vector<Bytes> EncodeHeadPose(PoseFormat format, const YawPitch& angles, const Position& position,
                                  const HeadModel& model) {
  const Quat rotation = YawPitchToQuaternion(angles);
  switch (format) {
    case PoseFormat::RotationMatrix:
      return {EncodePositionOnly(position), EncodeRotationMatrix(rotation)};
    case PoseFormat::Sensors:
      return {EncodePositionOnly(position), EncodeSensors(TurnTo(rotation, model.Sensors()))};
    case PoseFormat::EulerAngles:
      return {EncodeEulerAngles(angles.pitch, angles.yaw, 0, position)};
    case PoseFormat::QuaternionAndPosition:
      return {EncodeQuaternionAndPosition(rotation, position)};
    case PoseFormat::PositionOnly:
      return {EncodePositionOnly(position)};
    case PoseFormat::RotationAndPosition:
      return {EncodeRotationAndPosition(rotation, position)};
    case PoseFormat::Repeat:
    case PoseFormat::RepeatToo:
    case PoseFormat::Recenter:
      return {EncodeWithoutPose(format)};
    case PoseFormat::TrackingState:
      return {EncodeTrackingState(0)};
  }
  return {};
}

}  // namespace bench
