#include "link/head_pose_tracker.h"

#include <algorithm>

#include "link/wire.h"

namespace ombrel {

// How many bytes of pose a format reads, ahead of its own code, and what reads them.
struct HeadPoseTracker::Format {
  PoseFormat code;
  std::size_t size;
  void (HeadPoseTracker::*decode)(std::span<const std::byte> pose);
};

const HeadPoseTracker::Format& HeadPoseTracker::FormatOf(std::uint32_t code) {
  static constexpr std::array<Format, 10> kFormats{{
      {PoseFormat::kMatrix, sizeof(Matrix3x4), &HeadPoseTracker::DecodeMatrix},
      {PoseFormat::kRepublish, 0, &HeadPoseTracker::DecodeNothing},
      {PoseFormat::kSensors, 36, &HeadPoseTracker::DecodeSensors},
      {PoseFormat::kEulerAngles, 36, &HeadPoseTracker::DecodeEulerAngles},
      {PoseFormat::kQuaternion, 28, &HeadPoseTracker::DecodeQuaternion},
      {PoseFormat::kPositionOnly, 12, &HeadPoseTracker::DecodePosition},
      {PoseFormat::kPoseMatrix, sizeof(Matrix3x4), &HeadPoseTracker::DecodePoseMatrix},
      {PoseFormat::kRecenter, 0, &HeadPoseTracker::DecodeRecenter},
      {PoseFormat::kTrackingState, 1, &HeadPoseTracker::DecodeTrackingState},
      {PoseFormat::kRepublishLast, 0, &HeadPoseTracker::DecodeNothing},
  }};
  const auto found = std::ranges::find(kFormats, static_cast<PoseFormat>(code), &Format::code);
  return found != kFormats.end() ? *found : kFormats.front();  // compatibility.md, C5
}

HeadPoseTracker::HeadPoseTracker(std::uint64_t timestampMs) {
  record_.timestamp = timestampMs;
  record_.position.y = kDefaultHeadHeightMeters;
}

HeadPoseTracker::Outcome HeadPoseTracker::Apply(std::span<const std::byte> payload, std::uint64_t timestampMs) {
  if (payload.size() < sizeof(std::uint32_t)) return Outcome::kTooShort;
  const std::span<const std::byte> pose = payload.first(payload.size() - sizeof(std::uint32_t));
  const Format& format = FormatOf(ReadRecord<std::uint32_t>(payload, pose.size()));
  if (pose.size() < format.size) return Outcome::kTooShort;
  (this->*format.decode)(pose);
  if (format.code == PoseFormat::kPositionOnly) return Outcome::kStored;  // compatibility.md, C4
  record_.orientation = Normalised(recenterOffset_ * record_.rawOrientation);
  record_.timestamp = timestampMs;
  return Outcome::kPublished;
}

void HeadPoseTracker::Recenter() {
  const Quaternion offset = RecenterOffset(record_.rawOrientation);
  // A NaN in the offset would spoil every pose to come.
  if (IsFinite(offset)) recenterOffset_ = offset;
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
  // Never read again: compatibility.md, C10.
  record_.spare = ReadRecord<float>(pose, 24);
  record_.spare8 = ReadRecord<std::array<std::byte, 8>>(pose, 28);
}

void HeadPoseTracker::DecodeQuaternion(std::span<const std::byte> pose) {
  record_.rawOrientation = ReadRecord<Quaternion>(pose);
  record_.position = ReadRecord<Vector3>(pose, 16);
}

void HeadPoseTracker::DecodePosition(std::span<const std::byte> pose) { record_.position = ReadRecord<Vector3>(pose); }

void HeadPoseTracker::DecodePoseMatrix(std::span<const std::byte> pose) {
  ClearMotion();
  const auto matrix = ReadRecord<Matrix3x4>(pose);
  record_.rawOrientation = FromMatrixBySquareRoots(matrix);
  record_.position = {matrix[0][3], matrix[1][3], matrix[2][3]};
}

void HeadPoseTracker::DecodeTrackingState(std::span<const std::byte> pose) {
  record_.trackingState = std::to_integer<std::uint32_t>(pose[0]);
}

void HeadPoseTracker::ClearMotion() {
  record_.angularVelocity = {};
  record_.reserved = {};
}

}  // namespace ombrel
