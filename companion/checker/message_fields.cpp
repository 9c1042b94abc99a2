#include <ombrel/protocol.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>

#include "checker/message.h"

namespace checker {
namespace {

using Json = nlohmann::ordered_json;

// Nothing when the payload is shorter than the structure.
template <class Structure>
bool Copy(const Bytes& payload, Structure& structure) {
  if (payload.size() < sizeof(structure)) return false;
  std::memcpy(&structure, payload.data(), sizeof(structure));
  return true;
}

template <class Number, std::size_t kCount>
Json List(const Number (&values)[kCount]) {
  return Json(std::vector<Number>(values, values + kCount));
}

Json PoseFields(std::uint32_t format, const Bytes& payload) {
  Json fields = {{"format", format}};
  OmbrelTrackingQuaternion quaternion{};
  OmbrelTrackingEulerAngles euler{};
  OmbrelTrackingPosition position{};
  OmbrelTrackingSensors sensors{};
  OmbrelTrackingMatrix matrix{};
  if (format == OMBREL_POSE_QUATERNION && Copy(payload, quaternion)) {
    fields.update({{"orientation", List(quaternion.orientation)}, {"position", List(quaternion.position)}});
  } else if (format == OMBREL_POSE_EULER_ANGLES && Copy(payload, euler)) {
    fields.update({{"angles", List(euler.angles)}, {"position", List(euler.position)}});
  } else if (format == OMBREL_POSE_POSITION_ONLY && Copy(payload, position)) {
    fields["position"] = List(position.position);
  } else if (format == OMBREL_POSE_SENSORS && Copy(payload, sensors)) {
    fields.update({{"gyroscope", List(sensors.gyroscope)},
                   {"accelerometer", List(sensors.accelerometer)},
                   {"magnetometer", List(sensors.magnetometer)}});
  } else if (format == OMBREL_POSE_TRACKING_STATE) {
    fields["trackingState"] = payload.front();
  } else if (NeededBytes({OMBREL_TRACKING_UPDATE, payload}) == sizeof(matrix) && Copy(payload, matrix)) {
    fields["matrix"] = List(matrix.matrix);
  }
  return fields;
}

Json ControllerFields(const OmbrelControllerUpdate& record) {
  return {{"controllerId", record.controllerId},
          {"trackingState", record.trackingState},
          {"pose", List(record.pose)},
          {"packetNumber", record.packetNumber},
          {"pressedButtons", record.pressedButtons},
          {"touchedButtons", record.touchedButtons},
          {"trackpad", List(record.trackpad)},
          {"trigger", List(record.trigger)},
          {"acceleration", List(record.acceleration)},
          {"velocity", List(record.velocity)}};
}

Json AnnouncementFields(const OmbrelFrameSharingInfo& info) {
  const std::string_view name(info.name, sizeof(info.name));
  return {{"processId", info.processId},
          {"sharedHandles", {info.sharedHandle0, info.sharedHandle1}},
          {"name", name.substr(0, name.find('\0'))},
          {"invertY", info.invertY}};
}

}  // namespace

Json Fields(const Message& message) {
  OmbrelControllerUpdate record{};
  OmbrelFramerateUpdate rate{};
  OmbrelHapticPulse pulse{};
  OmbrelFrameSharingInfo info{};
  if (const auto format = PoseFormat(message)) return PoseFields(*format, message.payload);
  if (message.type == OMBREL_CONTROLLER_UPDATE && Copy(message.payload, record)) return ControllerFields(record);
  if (message.type == OMBREL_FRAMERATE_UPDATE && Copy(message.payload, rate)) {
    return {{"framesPerSecond", rate.framesPerSecond}};
  }
  if (message.type == OMBREL_HAPTIC_PULSE && Copy(message.payload, pulse)) {
    return {{"controllerId", pulse.controllerId},
            {"timestampMicroseconds", pulse.timestampMicroseconds},
            {"durationMicroseconds", pulse.durationMicroseconds}};
  }
  if (message.type == OMBREL_FRAME_SHARING_INFO && Copy(message.payload, info)) return AnnouncementFields(info);
  return Json::object();
}

}  // namespace checker
