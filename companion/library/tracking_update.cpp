#include "companion/tracking_update.h"

#include <algorithm>

#include "companion/messages.h"

namespace companion {
namespace {

template <typename Record>
Bytes EncodeRecord(const Record& record) {
  return EncodeMessage(MessageType::TrackingUpdate, AsBytes(record));
}

Bytes EncodeMatrix(const Quat& rotation, const Position& position, std::uint32_t format) {
  const PoseMatrix pose = ToPoseMatrix(rotation, position);
  OmbrelTrackingMatrix record{};
  std::copy(pose.begin(), pose.end(), record.matrix);
  record.format = format;
  return EncodeRecord(record);
}

Position ToPosition(const float (&position)[3]) { return {position[0], position[1], position[2]}; }

template <std::size_t Count>
void Copy(const float (&from)[Count], float (&to)[Count]) {
  std::copy(std::begin(from), std::end(from), to);
}

void Take(const OmbrelTrackingMatrix& record, TrackingUpdate& update) {
  std::copy(std::begin(record.matrix), std::end(record.matrix), update.matrix.begin());
}
void Take(const OmbrelTrackingSensors& record, TrackingUpdate& update) {
  Copy(record.gyroscope, update.sensors.gyroscope);
  Copy(record.accelerometer, update.sensors.accelerometer);
  Copy(record.magnetometer, update.sensors.magnetometer);
}
void Take(const OmbrelTrackingEulerAngles& record, TrackingUpdate& update) {
  Copy(record.angles, update.eulerAngles);
  update.position = ToPosition(record.position);
}
void Take(const OmbrelTrackingQuaternion& record, TrackingUpdate& update) {
  const auto& q = record.orientation;
  update.rotation = {q[0], q[1], q[2], q[3]};
  update.position = ToPosition(record.position);
}
void Take(const OmbrelTrackingPosition& record, TrackingUpdate& update) {
  update.position = ToPosition(record.position);
}
void Take(const OmbrelTrackingState& record, TrackingUpdate& update) { update.trackingState = record.state; }

// False when the payload is shorter than the record.
template <typename Record>
bool Read(std::span<const std::uint8_t> payload, TrackingUpdate& update) {
  const auto record = ReadAs<Record>(payload);
  if (record) Take(*record, update);
  return record.has_value();
}

bool ReadPose(std::span<const std::uint8_t> payload, TrackingUpdate& update) {
  switch (static_cast<PoseFormat>(update.format)) {
    case PoseFormat::Repeat:
    case PoseFormat::RepeatToo:
    case PoseFormat::Recenter:
      return true;
    case PoseFormat::Sensors:
      return Read<OmbrelTrackingSensors>(payload, update);
    case PoseFormat::EulerAngles:
      return Read<OmbrelTrackingEulerAngles>(payload, update);
    case PoseFormat::QuaternionAndPosition:
      return Read<OmbrelTrackingQuaternion>(payload, update);
    case PoseFormat::PositionOnly:
      return Read<OmbrelTrackingPosition>(payload, update);
    case PoseFormat::TrackingState:
      return Read<OmbrelTrackingState>(payload, update);
    case PoseFormat::RotationMatrix:
    case PoseFormat::RotationAndPosition:
      break;
  }
  return Read<OmbrelTrackingMatrix>(payload, update);
}

}  // namespace

Bytes EncodeTracking(std::uint32_t formatCode, std::span<const std::uint8_t> poseBytes) {
  Bytes payload(poseBytes.begin(), poseBytes.end());
  const auto code = AsBytes(formatCode);
  payload.insert(payload.end(), code.begin(), code.end());
  return EncodeMessage(MessageType::TrackingUpdate, payload);
}

Bytes EncodeRotationMatrix(const Quat& rotation) { return EncodeMatrix(rotation, {}, OMBREL_POSE_ROTATION_MATRIX); }

Bytes EncodeSensors(const SensorReadings& readings) {
  OmbrelTrackingSensors record{};
  Copy(readings.gyroscope, record.gyroscope);
  Copy(readings.accelerometer, record.accelerometer);
  Copy(readings.magnetometer, record.magnetometer);
  record.format = OMBREL_POSE_SENSORS;
  return EncodeRecord(record);
}

Bytes EncodeEulerAngles(float aboutX, float aboutY, float aboutZ, const Position& position) {
  return EncodeRecord(OmbrelTrackingEulerAngles{
      {aboutX, aboutY, aboutZ}, {position.x, position.y, position.z}, 0, {}, OMBREL_POSE_EULER_ANGLES});
}

Bytes EncodeQuaternionAndPosition(const Quat& q, const Position& position) {
  return EncodeRecord(
      OmbrelTrackingQuaternion{{q.x, q.y, q.z, q.w}, {position.x, position.y, position.z}, OMBREL_POSE_QUATERNION});
}

Bytes EncodePositionOnly(const Position& position) {
  return EncodeRecord(OmbrelTrackingPosition{{position.x, position.y, position.z}, OMBREL_POSE_POSITION_ONLY});
}

Bytes EncodeRotationAndPosition(const Quat& rotation, const Position& position) {
  return EncodeMatrix(rotation, position, OMBREL_POSE_MATRIX);
}

Bytes EncodeTrackingState(std::uint8_t state) {
  return EncodeRecord(OmbrelTrackingState{state, OMBREL_POSE_TRACKING_STATE});
}

Bytes EncodeWithoutPose(PoseFormat format) {
  return EncodeRecord(OmbrelTrackingFormatOnly{static_cast<std::uint32_t>(format)});
}

std::optional<TrackingUpdate> DecodeTracking(std::span<const std::uint8_t> payload) {
  constexpr std::size_t kCodeBytes = sizeof(OmbrelTrackingFormatOnly);
  if (payload.size() < kCodeBytes) return std::nullopt;
  TrackingUpdate update;
  update.format = ReadAs<OmbrelTrackingFormatOnly>(payload.last(kCodeBytes))->format;
  if (!ReadPose(payload, update)) return std::nullopt;
  return update;
}

}  // namespace companion
