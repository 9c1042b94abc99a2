#include "checker/message.h"

#include <ombrel/protocol.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace checker {
namespace {

// The first bytes of a payload; zeros where it is too short.
template <class Structure>
Structure As(const Bytes& payload) {
  Structure structure{};
  std::memcpy(&structure, payload.data(), std::min(payload.size(), sizeof(structure)));
  return structure;
}

template <class Number, std::size_t kCount>
void Append(std::vector<double>& numbers, const Number (&values)[kCount]) {
  numbers.insert(numbers.end(), values, values + kCount);
}

// Columns 0 to 2 of a 3x4 matrix are a rotation.
double ColumnError(const float (&matrix)[12]) {
  double worst = 0;
  for (std::size_t column = 0; column < 3; ++column) {
    const double length = std::hypot(matrix[column], matrix[4 + column], matrix[8 + column]);
    worst = std::max(worst, std::abs(length - 1));
  }
  return worst;
}

std::size_t NeededBytesOfFormat(std::uint32_t format) {
  switch (format) {
    case OMBREL_POSE_REPEAT:
    case OMBREL_POSE_REPEAT_TOO:
    case OMBREL_POSE_RECENTER:
      return sizeof(OmbrelTrackingFormatOnly);
    case OMBREL_POSE_SENSORS:
      return sizeof(OmbrelTrackingSensors);
    case OMBREL_POSE_EULER_ANGLES:
      return sizeof(OmbrelTrackingEulerAngles);
    case OMBREL_POSE_QUATERNION:
      return sizeof(OmbrelTrackingQuaternion);
    case OMBREL_POSE_POSITION_ONLY:
      return sizeof(OmbrelTrackingPosition);
    case OMBREL_POSE_TRACKING_STATE:
      return sizeof(OmbrelTrackingState);
    default:
      return sizeof(OmbrelTrackingMatrix);
  }
}

bool HasMatrix(std::uint32_t format) {
  return format == OMBREL_POSE_MATRIX || !IsKnownPoseFormat(format) || format == 0;
}

std::vector<double> PoseNumbers(std::uint32_t format, const Bytes& payload) {
  std::vector<double> numbers;
  if (format == OMBREL_POSE_QUATERNION) {
    const auto pose = As<OmbrelTrackingQuaternion>(payload);
    Append(numbers, pose.orientation);
    Append(numbers, pose.position);
  } else if (format == OMBREL_POSE_EULER_ANGLES) {
    const auto pose = As<OmbrelTrackingEulerAngles>(payload);
    Append(numbers, pose.angles);
    Append(numbers, pose.position);
  } else if (format == OMBREL_POSE_POSITION_ONLY) {
    Append(numbers, As<OmbrelTrackingPosition>(payload).position);
  } else if (format == OMBREL_POSE_SENSORS) {
    const auto readings = As<OmbrelTrackingSensors>(payload);
    Append(numbers, readings.gyroscope);
    Append(numbers, readings.accelerometer);
    Append(numbers, readings.magnetometer);
  } else if (HasMatrix(format)) {
    Append(numbers, As<OmbrelTrackingMatrix>(payload).matrix);
  }
  return numbers;
}

std::vector<double> ControllerNumbers(const OmbrelControllerUpdate& record) {
  std::vector<double> numbers;
  Append(numbers, record.pose);
  Append(numbers, record.trackpad);
  Append(numbers, record.trigger);
  Append(numbers, record.acceleration);
  Append(numbers, record.velocity);
  return numbers;
}

}  // namespace

std::vector<Message> MessageCutter::Take(std::span<const std::uint8_t> bytes, Nanoseconds when) {
  std::vector<Message> messages;
  if (tooLong_ || bytes.empty()) return messages;
  if (buffer_.empty()) begun_ = when;
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
  while (auto message = Next(when)) messages.push_back(std::move(*message));
  return messages;
}

std::optional<Message> MessageCutter::Next(Nanoseconds when) {
  if (buffer_.size() < sizeof(OmbrelMessageHeader)) return std::nullopt;
  const auto header = As<OmbrelMessageHeader>(buffer_);
  if (header.length > OMBREL_MAX_PAYLOAD) {
    tooLong_ = header.length;
    return std::nullopt;
  }
  const std::size_t size = sizeof(header) + header.length;
  if (buffer_.size() < size) return std::nullopt;
  const auto end = buffer_.begin() + static_cast<std::ptrdiff_t>(size);
  Message message{header.type, Bytes(buffer_.begin() + sizeof(header), end), begun_, when};
  buffer_.erase(buffer_.begin(), end);
  begun_ = when;
  return message;
}

std::string TypeName(std::uint32_t type) {
  switch (type) {
    case OMBREL_FRAME_SHARING_INFO:
      return "FrameSharingInfo";
    case OMBREL_TRACKING_UPDATE:
      return "TrackingUpdate";
    case OMBREL_RECENTER_REQUEST:
      return "RecenterRequest";
    case OMBREL_FRAMERATE_UPDATE:
      return "FramerateUpdate";
    case OMBREL_CONTROLLER_UPDATE:
      return "ControllerUpdate";
    case OMBREL_HAPTIC_PULSE:
      return "HapticPulse";
    case OMBREL_SHUTDOWN_REQUEST:
      return "ShutdownRequest";
    default:
      return "type " + std::to_string(type);
  }
}

bool IsToDriver(std::uint32_t type) {
  return type == OMBREL_TRACKING_UPDATE || type == OMBREL_RECENTER_REQUEST || type == OMBREL_FRAMERATE_UPDATE ||
         type == OMBREL_CONTROLLER_UPDATE || type == OMBREL_SHUTDOWN_REQUEST;
}

std::optional<std::uint32_t> PoseFormat(const Message& message) {
  constexpr std::size_t kCodeBytes = sizeof(std::uint32_t);
  if (message.type != OMBREL_TRACKING_UPDATE || message.payload.size() < kCodeBytes) return std::nullopt;
  std::uint32_t format = 0;
  std::memcpy(&format, message.payload.data() + message.payload.size() - kCodeBytes, kCodeBytes);
  return format;
}

bool IsKnownPoseFormat(std::uint32_t format) {
  return format <= OMBREL_POSE_MATRIX || format == OMBREL_POSE_RECENTER || format == OMBREL_POSE_TRACKING_STATE ||
         format == OMBREL_POSE_REPEAT_TOO;
}

std::size_t NeededBytes(const Message& message) {
  if (message.type == OMBREL_FRAMERATE_UPDATE) return sizeof(OmbrelFramerateUpdate);
  if (message.type == OMBREL_CONTROLLER_UPDATE) return sizeof(OmbrelControllerUpdate);
  if (message.type != OMBREL_TRACKING_UPDATE) return 0;
  const auto format = PoseFormat(message);
  return format ? NeededBytesOfFormat(*format) : sizeof(OmbrelTrackingFormatOnly);
}

std::vector<double> Numbers(const Message& message) {
  if (message.type == OMBREL_CONTROLLER_UPDATE) return ControllerNumbers(As<OmbrelControllerUpdate>(message.payload));
  const auto format = PoseFormat(message);
  return format ? PoseNumbers(*format, message.payload) : std::vector<double>();
}

double LengthError(const Message& message) {
  if (message.type == OMBREL_CONTROLLER_UPDATE) return ColumnError(As<OmbrelControllerUpdate>(message.payload).pose);
  const auto format = PoseFormat(message);
  if (!format) return 0;
  if (*format == OMBREL_POSE_QUATERNION) {
    const auto& q = As<OmbrelTrackingQuaternion>(message.payload).orientation;
    return std::abs(std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3])) - 1);
  }
  return HasMatrix(*format) ? ColumnError(As<OmbrelTrackingMatrix>(message.payload).matrix) : 0;
}

}  // namespace checker
