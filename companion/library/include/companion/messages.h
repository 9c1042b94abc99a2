#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "companion/wire_bytes.h"
#include "ombrel/protocol.h"

// Messages as they stand on the pipes. Pure functions over bytes; no thread of their own.
namespace companion {

inline constexpr std::size_t kHeaderBytes = sizeof(OmbrelMessageHeader);
inline constexpr std::uint32_t kLargestPayload = OMBREL_MAX_PAYLOAD;

enum class MessageType : std::uint32_t {
  FrameSharingInfo = OMBREL_FRAME_SHARING_INFO,
  TrackingUpdate = OMBREL_TRACKING_UPDATE,
  RecenterRequest = OMBREL_RECENTER_REQUEST,
  FramerateUpdate = OMBREL_FRAMERATE_UPDATE,
  ControllerUpdate = OMBREL_CONTROLLER_UPDATE,
  HapticPulse = OMBREL_HAPTIC_PULSE,
  ShutdownRequest = OMBREL_SHUTDOWN_REQUEST,
};

// One message: the type code, known or not, and the payload without its header.
struct Message {
  std::uint32_t type = 0;
  Bytes payload;

  bool Is(MessageType wanted) const { return type == static_cast<std::uint32_t>(wanted); }
};

// Driver to companion: where the frames are. Sent once per connection, with the first frame.
struct FrameSharingInfo {
  std::uint32_t processId = 0;
  std::uint32_t sharedHandles[OMBREL_TEXTURES] = {};
  std::string name;  // OMBREL_SHARING_NAME_LENGTH characters: the pose block's name
  bool invertY = false;
};

// Driver to companion: a controller shall vibrate.
struct HapticPulse {
  std::uint32_t controllerId = 0;
  std::uint32_t timestampMicroseconds = 0;  // performance counter, low 32 bits
  std::uint16_t durationMicroseconds = 0;   // wraps at 65536
};

// Header and payload, as written to a pipe.
Bytes EncodeMessage(std::uint32_t type, std::span<const std::uint8_t> payload);
inline Bytes EncodeMessage(MessageType type, std::span<const std::uint8_t> payload) {
  return EncodeMessage(static_cast<std::uint32_t>(type), payload);
}

// Whole messages that the companion sends, besides tracking and controller updates.
Bytes EncodeRecenterRequest();
Bytes EncodeFramerateUpdate(std::uint32_t framesPerSecond);
Bytes EncodeShutdownRequest();

// Payloads that the driver sent. Nothing when the length is wrong or the name has no end.
std::optional<FrameSharingInfo> DecodeFrameSharingInfo(std::span<const std::uint8_t> payload);
std::optional<HapticPulse> DecodeHapticPulse(std::span<const std::uint8_t> payload);

// The other directions, for tests of a companion without a driver. A name over 59 characters is cut.
Bytes EncodeFrameSharingInfo(const FrameSharingInfo& info);
Bytes EncodeHapticPulse(const HapticPulse& pulse);
// Frames per second; nothing when the payload is shorter than 4 bytes.
std::optional<std::uint32_t> DecodeFramerateUpdate(std::span<const std::uint8_t> payload);

}  // namespace companion
