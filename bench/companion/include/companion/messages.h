#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "companion/wire_bytes.h"

// The messages on the two pipes, as docs/protocol.md states them. Pure functions over bytes; no thread of its own.
namespace bench {

inline constexpr std::size_t kHeaderBytes = 8;
inline constexpr std::uint32_t kLargestPayload = 65536;

enum class MessageType : std::uint32_t {
  FrameSharingInfo = 2,
  TrackingUpdate = 4,
  RecenterRequest = 8,
  FramerateUpdate = 9,
  ControllerUpdate = 10,
  HapticPulse = 11,
  ShutdownRequest = 14,
};

// One message as it stands on a pipe: the type code, known or not, and the payload without its header.
struct Message {
  std::uint32_t type = 0;
  Bytes payload;

  bool Is(MessageType wanted) const { return type == static_cast<std::uint32_t>(wanted); }
};

// Driver to companion: where the frames are. Sent once per connection, with the first frame.
struct FrameSharingInfo {
  std::uint32_t processId = 0;
  std::uint32_t sharedHandles[2] = {};
  std::string name;  // 58 characters: the pose block's name and the stem of the two mutex names
  bool invertY = false;
};

// Driver to companion: a controller shall vibrate.
struct HapticPulse {
  std::uint32_t controllerId = 0;
  std::uint32_t timestampMicroseconds = 0;  // performance counter, low 32 bits
  std::uint16_t durationMicroseconds = 0;   // wraps at 65536
};

inline constexpr std::size_t kFrameSharingInfoBytes = 76;
inline constexpr std::size_t kSharingNameBytes = 60;
inline constexpr std::size_t kHapticPulseBytes = 12;

// Header and payload, as written to a pipe.
Bytes EncodeMessage(std::uint32_t type, std::span<const std::uint8_t> payload);
inline Bytes EncodeMessage(MessageType type, std::span<const std::uint8_t> payload) {
  return EncodeMessage(static_cast<std::uint32_t>(type), payload);
}

// Whole messages that the companion sends, besides tracking and controller updates.
Bytes EncodeRecenterRequest();
Bytes EncodeFramerateUpdate(std::uint32_t framesPerSecond);
Bytes EncodeShutdownRequest();

// Whole messages that the driver sends, for a stand-in of the driver. A name over 59 characters is cut.
Bytes EncodeFrameSharingInfo(const FrameSharingInfo& info);
Bytes EncodeHapticPulse(const HapticPulse& pulse);

// Payloads that the driver sent. Nothing when the length is wrong or the name has no end.
std::optional<FrameSharingInfo> DecodeFrameSharingInfo(std::span<const std::uint8_t> payload);
std::optional<HapticPulse> DecodeHapticPulse(std::span<const std::uint8_t> payload);

// Frames per second of a FramerateUpdate payload; nothing when it is shorter than 4 bytes.
std::optional<std::uint32_t> DecodeFramerateUpdate(std::span<const std::uint8_t> payload);

}  // namespace bench
