#include "companion/tracking_update.h"

#include "companion/messages.h"

namespace bench {
namespace {

void PutMatrix(ByteWriter& writer, const PoseMatrix& matrix) {
  for (const float value : matrix) writer.PutFloat(value);
}

void PutPosition(ByteWriter& writer, const Position& position) {
  writer.PutFloat(position.x);
  writer.PutFloat(position.y);
  writer.PutFloat(position.z);
}

Bytes EncodeFormat(PoseFormat format, ByteWriter& pose) {
  return EncodeTracking(static_cast<std::uint32_t>(format), pose.Take());
}

Position GetPosition(ByteReader& reader) {
  Position position;
  position.x = reader.GetFloat();
  position.y = reader.GetFloat();
  position.z = reader.GetFloat();
  return position;
}

void GetFloats(ByteReader& reader, std::span<float> values) {
  for (float& value : values) value = reader.GetFloat();
}

void ReadPose(ByteReader& reader, TrackingUpdate& update) {
  switch (static_cast<PoseFormat>(update.format)) {
    case PoseFormat::Repeat:
    case PoseFormat::RepeatToo:
    case PoseFormat::Recenter:
      return;
    case PoseFormat::Sensors:
      GetFloats(reader, update.sensors.gyroscope);
      GetFloats(reader, update.sensors.accelerometer);
      return GetFloats(reader, update.sensors.magnetometer);
    case PoseFormat::EulerAngles:
      GetFloats(reader, update.eulerAngles);
      update.position = GetPosition(reader);
      reader.Skip(12);
      return;
    case PoseFormat::QuaternionAndPosition:
      update.rotation.x = reader.GetFloat();
      update.rotation.y = reader.GetFloat();
      update.rotation.z = reader.GetFloat();
      update.rotation.w = reader.GetFloat();
      update.position = GetPosition(reader);
      return;
    case PoseFormat::PositionOnly:
      update.position = GetPosition(reader);
      return;
    case PoseFormat::TrackingState:
      update.trackingState = reader.Get<std::uint8_t>();
      return;
    case PoseFormat::RotationMatrix:
    case PoseFormat::RotationAndPosition:
      break;
  }
  GetFloats(reader, update.matrix);
}

}  // namespace

Bytes EncodeTracking(std::uint32_t formatCode, std::span<const std::uint8_t> poseBytes) {
  ByteWriter payload;
  payload.PutBytes(poseBytes);
  payload.Put(formatCode);
  return EncodeMessage(MessageType::TrackingUpdate, payload.Take());
}

Bytes EncodeRotationMatrix(const Quat& rotation) {
  ByteWriter pose;
  PutMatrix(pose, ToPoseMatrix(rotation, {}));
  return EncodeFormat(PoseFormat::RotationMatrix, pose);
}

Bytes EncodeSensors(const SensorReadings& readings) {
  ByteWriter pose;
  for (const float value : readings.gyroscope) pose.PutFloat(value);
  for (const float value : readings.accelerometer) pose.PutFloat(value);
  for (const float value : readings.magnetometer) pose.PutFloat(value);
  return EncodeFormat(PoseFormat::Sensors, pose);
}

Bytes EncodeEulerAngles(float aboutX, float aboutY, float aboutZ, const Position& position) {
  ByteWriter pose;
  pose.PutFloat(aboutX);
  pose.PutFloat(aboutY);
  pose.PutFloat(aboutZ);
  PutPosition(pose, position);
  pose.PutZeros(12);
  return EncodeFormat(PoseFormat::EulerAngles, pose);
}

Bytes EncodeQuaternionAndPosition(const Quat& rotation, const Position& position) {
  ByteWriter pose;
  pose.PutFloat(rotation.x);
  pose.PutFloat(rotation.y);
  pose.PutFloat(rotation.z);
  pose.PutFloat(rotation.w);
  PutPosition(pose, position);
  return EncodeFormat(PoseFormat::QuaternionAndPosition, pose);
}

Bytes EncodePositionOnly(const Position& position) {
  ByteWriter pose;
  PutPosition(pose, position);
  return EncodeFormat(PoseFormat::PositionOnly, pose);
}

Bytes EncodeRotationAndPosition(const Quat& rotation, const Position& position) {
  ByteWriter pose;
  PutMatrix(pose, ToPoseMatrix(rotation, position));
  return EncodeFormat(PoseFormat::RotationAndPosition, pose);
}

Bytes EncodeTrackingState(std::uint8_t state) {
  ByteWriter pose;
  pose.Put(state);
  return EncodeFormat(PoseFormat::TrackingState, pose);
}

Bytes EncodeWithoutPose(PoseFormat format) {
  ByteWriter pose;
  return EncodeFormat(format, pose);
}

std::optional<TrackingUpdate> DecodeTracking(std::span<const std::uint8_t> payload) {
  if (payload.size() < 4) return std::nullopt;
  ByteReader code(payload.last(4));
  TrackingUpdate update;
  update.format = code.Get<std::uint32_t>();
  ByteReader pose(payload.first(payload.size() - 4));
  ReadPose(pose, update);
  if (!pose.Good()) return std::nullopt;
  return update;
}

}  // namespace bench
