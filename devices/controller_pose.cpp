#include "devices/controller_pose.h"

#include <bit>
#include <cstddef>

#include "context/tracking_state.h"
#include "link/quaternion.h"

namespace ombrel {
namespace {

constexpr double kPoseTimeOffsetSeconds = 0.04;

}  // namespace

vr::DriverPose_t BuildControllerPose(const ControllerUpdate& record) {
  vr::DriverPose_t pose{};
  pose.poseTimeOffset = kPoseTimeOffsetSeconds;
  pose.qWorldFromDriverRotation = {1.0, 0.0, 0.0, 0.0};
  pose.qDriverFromHeadRotation = {1.0, 0.0, 0.0, 0.0};
  const auto matrix = std::bit_cast<Matrix3x4>(record.pose);
  const Quaternion rotation = FromMatrixBySquareRoots(matrix);
  pose.qRotation = {rotation.w, rotation.x, rotation.y, rotation.z};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    pose.vecPosition[axis] = matrix[axis][3];
    pose.vecVelocity[axis] = record.velocity[axis];
    pose.vecAcceleration[axis] = record.acceleration[axis];
  }
  ApplyTrackingState(record.trackingState, pose);
  return pose;
}

}  // namespace ombrel
