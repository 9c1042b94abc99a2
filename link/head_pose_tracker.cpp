#include "link/head_pose_tracker.h"

#include "link/wire.h"

namespace ombrel {
namespace {

// Bytes of pose that a format reads, ahead of its own code.
std::size_t PoseSize(std::uint32_t format) {
  switch (static_cast<PoseFormat>(format)) {
    case PoseFormat::kRepublish:
    case PoseFormat::kRecenter:
    case PoseFormat::kRepublishLast:
      return 0;
    case PoseFormat::kTrackingState:
      return 1;
    case PoseFormat::kPositionOnly:
      return 12;
    case PoseFormat::kQuaternion:
      return 28;
    case PoseFormat::kSensors:
    case PoseFormat::kEulerAngles:
      return 36;
    case PoseFormat::kMatrix:
    case PoseFormat::kPoseMatrix:
      break;
  }
  return sizeof(Matrix3x4);
}

}  // namespace

HeadPoseTracker::HeadPoseTracker(std::uint64_t timestampMs) {
  record_.timestamp = timestampMs;
  record_.position.y = kDefaultHeadHeightMeters;
}

HeadPoseTracker::Outcome HeadPoseTracker::Apply(std::span<const std::byte> payload, std::uint64_t timestampMs) {
  if (payload.size() < sizeof(std::uint32_t)) return Outcome::kTooShort;
  const std::span<const std::byte> pose = payload.first(payload.size() - sizeof(std::uint32_t));
  const auto format = ReadRecord<std::uint32_t>(payload, pose.size());
  if (pose.size() < PoseSize(format)) return Outcome::kTooShort;
  Decode(format, pose);
  if (format == static_cast<std::uint32_t>(PoseFormat::kPositionOnly)) return Outcome::kStored;
  record_.orientation = Normalised(recenterOffset_ * record_.rawOrientation);
  record_.timestamp = timestampMs;
  return Outcome::kPublished;
}

void HeadPoseTracker::Recenter() {
  const Quaternion offset = RecenterOffset(record_.rawOrientation);
  // An offset that is not a number would spoil every pose to come.
  if (IsFinite(offset)) recenterOffset_ = offset;
}

void HeadPoseTracker::Decode(std::uint32_t format, std::span<const std::byte> pose) {
  switch (static_cast<PoseFormat>(format)) {
    case PoseFormat::kRepublish:
    case PoseFormat::kRepublishLast:
      return;
    case PoseFormat::kSensors:
      return DecodeSensors(pose);
    case PoseFormat::kEulerAngles:
      return DecodeEulerAngles(pose);
    case PoseFormat::kQuaternion:
      return DecodeQuaternion(pose);
    case PoseFormat::kPositionOnly:
      record_.position = ReadRecord<Vector3>(pose);
      return;
    case PoseFormat::kPoseMatrix:
      return DecodePoseMatrix(pose);
    case PoseFormat::kRecenter:
      return Recenter();
    case PoseFormat::kTrackingState:
      record_.trackingState = std::to_integer<std::uint32_t>(pose[0]);
      return;
    case PoseFormat::kMatrix:
      break;
  }
  DecodeMatrix(pose);
}

void HeadPoseTracker::DecodeMatrix(std::span<const std::byte> pose) {
  ClearMotion();
  record_.rawOrientation = FromMatrixByTrace(ReadRecord<Matrix3x4>(pose));
}

void HeadPoseTracker::DecodeSensors(std::span<const std::byte> pose) {
  ClearMotion();
  filter_.Update(ReadRecord<SensorSample>(pose));
  record_.rawOrientation = filter_.Orientation();
}

void HeadPoseTracker::DecodeEulerAngles(std::span<const std::byte> pose) {
  ClearMotion();
  const auto angles = ReadRecord<Vector3>(pose);
  record_.rawOrientation = EulerToQuaternion(angles.x, angles.y, angles.z);
  record_.position = ReadRecord<Vector3>(pose, 12);
  record_.spare = ReadRecord<float>(pose, 24);
  record_.spare8 = ReadRecord<std::array<std::byte, 8>>(pose, 28);
}

void HeadPoseTracker::DecodeQuaternion(std::span<const std::byte> pose) {
  record_.rawOrientation = ReadRecord<Quaternion>(pose);
  record_.position = ReadRecord<Vector3>(pose, 16);
}

void HeadPoseTracker::DecodePoseMatrix(std::span<const std::byte> pose) {
  ClearMotion();
  const auto matrix = ReadRecord<Matrix3x4>(pose);
  record_.rawOrientation = FromMatrixBySquareRoots(matrix);
  record_.position = {matrix[0][3], matrix[1][3], matrix[2][3]};
}

void HeadPoseTracker::ClearMotion() {
  record_.angularVelocity = {};
  record_.reserved = {};
}

}  // namespace ombrel
