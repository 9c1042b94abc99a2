#include "hmd/head_pose.h"

namespace ombrel {
namespace {

constexpr float kRadiansPerDegree = 0.017453292F;

vr::HmdQuaternion_t Widened(const Quaternion& q) { return {q.w, q.x, q.y, q.z}; }

void ApplyTrackingState(std::uint32_t trackingState, vr::DriverPose_t& pose) {
  switch (trackingState) {
    case 1:
      pose.result = vr::TrackingResult_Running_OutOfRange;
      pose.poseIsValid = false;
      break;
    case 2:
      pose.result = vr::TrackingResult_Uninitialized;
      pose.poseIsValid = false;
      pose.deviceIsConnected = false;
      break;
    default:
      break;
  }
}

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
  pose.result = vr::TrackingResult_Running_OK;
  pose.poseIsValid = true;
  pose.willDriftInYaw = true;
  pose.deviceIsConnected = true;
  if (hasTrackingData) {
    pose.qRotation = Widened(offsets.rotationOffsetY * (head.orientation * offsets.rotationOffsetXZ));
    pose.vecPosition[0] = head.position.x;
    pose.vecPosition[1] = head.position.y;
    pose.vecPosition[2] = head.position.z;
    ApplyTrackingState(head.trackingState, pose);
  } else {
    pose.qRotation.w = 1.0;
    pose.vecPosition[1] = kDefaultHeadHeightMeters;
  }
  for (std::size_t axis = 0; axis < 3; ++axis) pose.vecAngularVelocity[axis] = head.angularVelocity[axis];
  return pose;
}

}  // namespace ombrel
