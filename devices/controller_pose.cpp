#include "devices/controller_pose.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <span>

#include "link/quaternion.h"

namespace ombrel {
namespace {

constexpr double kPoseTimeOffsetSeconds = 0.04;

// The last eight bytes of a pose, which are written at once: what is written byte by byte cannot be read as a word, to be
// published, until it has gone all the way to memory.
struct Status {
  vr::ETrackingResult result;
  bool poseIsValid;
  bool willDriftInYaw = false;
  bool shouldApplyHeadModel = false;
  bool deviceIsConnected;
};
static_assert(sizeof(Status) == 8 && offsetof(vr::DriverPose_t, result) + sizeof(Status) == sizeof(vr::DriverPose_t));
static_assert(offsetof(vr::DriverPose_t, deviceIsConnected) ==
              offsetof(vr::DriverPose_t, result) + offsetof(Status, deviceIsConnected));

// By tracking state.
constexpr std::array<Status, 3> kStatus{{
    {.result = vr::TrackingResult_Running_OK, .poseIsValid = true, .deviceIsConnected = true},
    {.result = vr::TrackingResult_Running_OutOfRange, .poseIsValid = false, .deviceIsConnected = true},
    {.result = vr::TrackingResult_Uninitialized, .poseIsValid = false, .deviceIsConnected = false},
}};

const Status& StatusOf(std::uint32_t trackingState) {
  return kStatus[trackingState < kStatus.size() ? trackingState : 0];
}

}  // namespace

void ApplyControllerPose(const ControllerUpdate& record, vr::DriverPose_t& pose) {
  const MatrixBytes matrix(std::as_bytes(std::span(record.pose)));
  const Quaternion rotation = FromMatrixBySquareRoots(matrix);
  pose.poseTimeOffset = kPoseTimeOffsetSeconds;
  pose.qWorldFromDriverRotation = {1.0, 0.0, 0.0, 0.0};
  pose.qDriverFromHeadRotation = {1.0, 0.0, 0.0, 0.0};
  for (std::size_t axis = 0; axis < 3; ++axis) pose.vecPosition[axis] = matrix[axis][3];
  for (std::size_t axis = 0; axis < 3; ++axis) pose.vecVelocity[axis] = record.velocity[axis];
  for (std::size_t axis = 0; axis < 3; ++axis) pose.vecAcceleration[axis] = record.acceleration[axis];
  pose.qRotation = {rotation.w, rotation.x, rotation.y, rotation.z};
  std::memcpy(&pose.result, &StatusOf(record.trackingState), sizeof(Status));
}

}  // namespace ombrel
