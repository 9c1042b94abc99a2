#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "companion/rotation.h"
#include "companion/wire_bytes.h"
#include "ombrel/protocol.h"

namespace companion {

// The last four bytes of a TrackingUpdate: how the bytes before them tell the head's pose.
enum class PoseFormat : std::uint32_t {
  RotationMatrix = OMBREL_POSE_ROTATION_MATRIX,
  Repeat = OMBREL_POSE_REPEAT,
  Sensors = OMBREL_POSE_SENSORS,
  EulerAngles = OMBREL_POSE_EULER_ANGLES,
  QuaternionAndPosition = OMBREL_POSE_QUATERNION,  // the one to use
  PositionOnly = OMBREL_POSE_POSITION_ONLY,
  RotationAndPosition = OMBREL_POSE_MATRIX,
  Recenter = OMBREL_POSE_RECENTER,
  TrackingState = OMBREL_POSE_TRACKING_STATE,
  RepeatToo = OMBREL_POSE_REPEAT_TOO,
};

struct SensorReadings {
  float gyroscope[3] = {};      // radians per second about x, y, z
  float accelerometer[3] = {};  // any unit; all zero: not used
  float magnetometer[3] = {};   // any unit; all zero: not used
};

// Whole messages, header included. Positions in metres, angles in radians.
Bytes EncodeTracking(std::uint32_t formatCode, std::span<const std::uint8_t> poseBytes);
Bytes EncodeRotationMatrix(const Quat& rotation);  // the fourth column is sent as zeros
Bytes EncodeSensors(const SensorReadings& readings);
Bytes EncodeEulerAngles(float aboutX, float aboutY, float aboutZ, const Position& position);
Bytes EncodeQuaternionAndPosition(const Quat& rotation, const Position& position);
Bytes EncodePositionOnly(const Position& position);
Bytes EncodeRotationAndPosition(const Quat& rotation, const Position& position);
Bytes EncodeTrackingState(std::uint8_t state);
Bytes EncodeWithoutPose(PoseFormat format);  // Repeat, RepeatToo and Recenter

// A TrackingUpdate payload taken apart. `format` is the code as sent, known or not.
struct TrackingUpdate {
  std::uint32_t format = 0;
  PoseMatrix matrix = {};     // RotationMatrix (and unknown codes), RotationAndPosition
  SensorReadings sensors;     // Sensors
  float eulerAngles[3] = {};  // EulerAngles
  Quat rotation;              // QuaternionAndPosition
  Position position;          // EulerAngles, QuaternionAndPosition, PositionOnly
  std::uint8_t trackingState = 0;

  bool Is(PoseFormat wanted) const { return format == static_cast<std::uint32_t>(wanted); }
};

// Nothing when the payload is shorter than its format needs; bytes between pose and code are not read.
std::optional<TrackingUpdate> DecodeTracking(std::span<const std::uint8_t> payload);

}  // namespace companion
