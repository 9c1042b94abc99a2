#include "floor/controller_floor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace bench::floor {
namespace {

using Matrix = std::array<std::array<float, 4>, 3>;

constexpr std::size_t kTrackingStateAt = 4, kPoseAt = 16, kStateAt = 80, kAccelerationAt = 144, kVelocityAt = 168;

template <typename Value>
Value At(const std::byte* record, std::size_t offset) {
  Value value;
  std::memcpy(&value, record + offset, sizeof(value));
  return value;
}

float HalfRoot(float v) { return std::sqrt(std::max(0.0F, v)) * 0.5F; }
float Sign(float v) { return static_cast<float>(v > 0.0F) - static_cast<float>(v < 0.0F); }

vr::HmdQuaternion_t Rotation(const Matrix& m) {
  return {HalfRoot(1.0F + m[0][0] + m[1][1] + m[2][2]),
          HalfRoot(1.0F + m[0][0] - m[1][1] - m[2][2]) * Sign(m[2][1] - m[1][2]),
          HalfRoot(1.0F - m[0][0] + m[1][1] - m[2][2]) * Sign(m[0][2] - m[2][0]),
          HalfRoot(1.0F - m[0][0] - m[1][1] + m[2][2]) * Sign(m[1][0] - m[0][1])};
}

}  // namespace

bool ControllerFloor::Take(std::span<const std::byte, kControllerRecordBytes> record) {
  const auto matrix = At<Matrix>(record.data(), kPoseAt);
  const bool tracked = At<std::uint32_t>(record.data(), kTrackingStateAt) == 0;
  pose_.poseTimeOffset = 0.04;
  pose_.qWorldFromDriverRotation = {1.0, 0.0, 0.0, 0.0};
  pose_.qDriverFromHeadRotation = {1.0, 0.0, 0.0, 0.0};
  for (std::size_t axis = 0; axis < 3; ++axis) pose_.vecPosition[axis] = matrix[axis][3];
  std::memcpy(pose_.vecVelocity, record.data() + kVelocityAt, sizeof(pose_.vecVelocity));
  std::memcpy(pose_.vecAcceleration, record.data() + kAccelerationAt, sizeof(pose_.vecAcceleration));
  pose_.qRotation = Rotation(matrix);
  pose_.result = tracked ? vr::TrackingResult_Running_OK : vr::TrackingResult_Running_OutOfRange;
  pose_.poseIsValid = tracked;
  pose_.deviceIsConnected = true;
  const std::byte* state = record.data() + kStateAt;
  if (std::memcmp(state_.data(), state, state_.size()) == 0) return false;
  std::memcpy(state_.data(), state, state_.size());
  return true;
}

}  // namespace bench::floor
