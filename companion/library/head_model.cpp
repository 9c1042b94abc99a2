#include "companion/head_model.h"

#include <bit>

namespace companion {
namespace {

// The filter's approximate 1/sqrt: its small error is part of the protocol's arithmetic.
float FastInverseRoot(float value) {
  const float half = 0.5F * value;
  const auto guess = std::bit_cast<float>(0x5F3759DFU - (std::bit_cast<std::uint32_t>(value) >> 1));
  return guess * (1.5F - half * guess * guess);
}

struct Vector {
  float x, y, z;
};

// Half the error between measured and expected direction of gravity, times the filter's gain of 1.
Vector GravityCorrection(const Quat& q, const float (&measured)[3]) {
  const float squared = measured[0] * measured[0] + measured[1] * measured[1] + measured[2] * measured[2];
  if (squared == 0) return {0, 0, 0};
  const float scale = FastInverseRoot(squared);
  const Vector a{measured[0] * scale, measured[1] * scale, measured[2] * scale};
  const Vector v{q.x * q.z - q.w * q.y, q.w * q.x + q.y * q.z, q.w * q.w - 0.5F + q.z * q.z};
  return {a.y * v.z - a.z * v.y, a.z * v.x - a.x * v.z, a.x * v.y - a.y * v.x};
}

}  // namespace

void SensorFollower::Step(const SensorReadings& readings) {
  const Vector correction = GravityCorrection(orientation_, readings.accelerometer);
  const float scale = 0.5F / static_cast<float>(OMBREL_SENSOR_RATE);
  const Quat turn{(readings.gyroscope[0] + correction.x) * scale, (readings.gyroscope[1] + correction.y) * scale,
                  (readings.gyroscope[2] + correction.z) * scale, 1};
  const Quat turned = Multiply(orientation_, turn);
  const float shrink =
      FastInverseRoot(turned.x * turned.x + turned.y * turned.y + turned.z * turned.z + turned.w * turned.w);
  orientation_ = {turned.x * shrink, turned.y * shrink, turned.z * shrink, turned.w * shrink};
}

bool HeadModel::Apply(std::span<const std::uint8_t> message) {
  const auto header = ReadAs<OmbrelMessageHeader>(message);
  if (!header) return false;
  const auto type = static_cast<MessageType>(header->type);
  if (type == MessageType::RecenterRequest) offset_ = RecenterOffset(raw_);
  if (type != MessageType::TrackingUpdate) return false;
  const auto update = DecodeTracking(message.subspan(kHeaderBytes));
  return update && ApplyTracking(*update);
}

bool HeadModel::ApplyTracking(const TrackingUpdate& update) {
  Take(update);
  if (update.Is(PoseFormat::PositionOnly)) return false;
  Publish();
  return true;
}

void HeadModel::Take(const TrackingUpdate& update) {
  switch (static_cast<PoseFormat>(update.format)) {
    case PoseFormat::Repeat:
    case PoseFormat::RepeatToo:
      return;
    case PoseFormat::Recenter:
      offset_ = RecenterOffset(raw_);
      return;
    case PoseFormat::Sensors:
      sensors_.Step(update.sensors);
      raw_ = RotationByTrace(ToPoseMatrix(Normalise(sensors_.Orientation()), {}));
      return;
    case PoseFormat::EulerAngles:
      raw_ = EulerToQuaternion(update.eulerAngles[0], update.eulerAngles[1], update.eulerAngles[2]);
      position_ = update.position;
      return;
    case PoseFormat::QuaternionAndPosition:
      raw_ = update.rotation;
      position_ = update.position;
      return;
    case PoseFormat::PositionOnly:
      position_ = update.position;
      return;
    case PoseFormat::RotationAndPosition:
      raw_ = RotationByComponentRoots(update.matrix);
      position_ = PositionOf(update.matrix);
      return;
    case PoseFormat::TrackingState:
      trackingState_ = update.trackingState;
      return;
    case PoseFormat::RotationMatrix:
      break;
  }
  raw_ = RotationByTrace(update.matrix);
}

void HeadModel::Publish() { published_ = ToPoseMatrix(Normalise(Multiply(offset_, raw_)), position_); }

}  // namespace companion
