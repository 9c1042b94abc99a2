#include "hmd/head_pose.h"

#include <cstddef>

#include "context/tracking_state.h"

namespace ombrel {
namespace {

constexpr float kRadiansPerDegree = 0.017453292F;

vr::HmdQuaternion_t Widened(const Quaternion& q) { return {q.w, q.x, q.y, q.z}; }

}  // namespace

RotationOffsets MakeRotationOffsets(std::int32_t xDegrees, std::int32_t yDegrees, std::int32_t zDegrees) {
  const float x = static_cast<float>(xDegrees) * kRadiansPerDegree;
  const float y = static_cast<float>(yDegrees) * kRadiansPerDegree;
  const float z = static_cast<float>(zDegrees) * kRadiansPerDegree;
  return {.rotationOffsetXZ = EulerToQuaternion(x, 0.0F, z), .rotationOffsetY = EulerToQuaternion(0.0F, y, 0.0F)};
}

vr::DriverPose_t BuildHeadPose(const LinkPoseRecord& head, bool hasTrackingData, const RotationOffsets& offsets) {
  vr::DriverPose_t pose{};
  pose.qWorldFromDriverRotation.w = 1.0;
  pose.qDriverFromHeadRotation.w = 1.0;
  pose.willDriftInYaw = true;
  ApplyTrackingState(hasTrackingData ? head.trackingState : 0, pose);
  if (hasTrackingData) {
    pose.qRotation = Widened(offsets.rotationOffsetY * (head.orientation * offsets.rotationOffsetXZ));
    pose.vecPosition[0] = head.position.x;
    pose.vecPosition[1] = head.position.y;
    pose.vecPosition[2] = head.position.z;
  } else {
    pose.qRotation.w = 1.0;
    pose.vecPosition[1] = kDefaultHeadHeightMeters;
  }
  for (std::size_t axis = 0; axis < 3; ++axis) pose.vecAngularVelocity[axis] = head.angularVelocity[axis];
  return pose;
}

}  // namespace ombrel
