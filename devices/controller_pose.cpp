#include "devices/controller_pose.h"

#include <algorithm>
#include <bit>

#include "link/quaternion.h"

namespace ombrel {
namespace {

constexpr double kPoseTimeOffsetSeconds = 0.04;

struct Status {
  vr::ETrackingResult result;
  bool poseIsValid;
  bool deviceIsConnected;
};

Status StatusOf(std::uint32_t trackingState) {
  switch (trackingState) {
    case 1:
      return {vr::TrackingResult_Running_OutOfRange, false, true};
    case 2:
      return {vr::TrackingResult_Uninitialized, false, false};
    default:
      return {vr::TrackingResult_Running_OK, true, true};
  }
}

}  // namespace

void ApplyControllerPose(const ControllerUpdate& record, vr::DriverPose_t& pose) {
  const auto matrix = std::bit_cast<Matrix3x4>(record.pose);
  const Quaternion rotation = FromMatrixBySquareRoots(matrix);
  const Status status = StatusOf(record.trackingState);
  pose.poseTimeOffset = kPoseTimeOffsetSeconds;
  pose.qWorldFromDriverRotation = {1.0, 0.0, 0.0, 0.0};
  pose.qDriverFromHeadRotation = {1.0, 0.0, 0.0, 0.0};
  for (std::size_t axis = 0; axis < 3; ++axis) pose.vecPosition[axis] = matrix[axis][3];
  std::ranges::copy(record.velocity, pose.vecVelocity);
  std::ranges::copy(record.acceleration, pose.vecAcceleration);
  pose.qRotation = {rotation.w, rotation.x, rotation.y, rotation.z};
  pose.result = status.result;
  pose.poseIsValid = status.poseIsValid;
  pose.willDriftInYaw = false;
  pose.shouldApplyHeadModel = false;
  pose.deviceIsConnected = status.deviceIsConnected;
}

}  // namespace ombrel
