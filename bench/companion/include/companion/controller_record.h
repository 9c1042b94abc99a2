#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "companion/rotation.h"
#include "companion/wire_bytes.h"

namespace bench {

inline constexpr std::size_t kControllerRecordBytes = 192;

// Bit numbers of pressedButtons and touchedButtons.
enum class ControllerButton : std::uint32_t { System = 0, ApplicationMenu = 1, Grip = 2, Trackpad = 32, Trigger = 33 };

constexpr std::uint64_t ButtonBit(ControllerButton button) {
  return std::uint64_t{1} << static_cast<std::uint32_t>(button);
}

struct Axis {
  float x = 0;
  float y = 0;
};

// What a ControllerUpdate says of one controller. Metres, metres per second, right-handed axes with y up.
struct ControllerRecord {
  std::uint32_t controllerId = 0;
  std::uint32_t trackingState = 0;  // 0 tracking, 1 out of range, 2 not connected
  PoseMatrix pose = IdentityPose();
  std::uint32_t packetNumber = 0;
  std::uint64_t pressedButtons = 0;
  std::uint64_t touchedButtons = 0;
  std::array<Axis, 5> axes = {};  // 0 trackpad, 1 trigger (x), 2 to 4 unused
  std::array<double, 3> acceleration = {};
  std::array<double, 3> velocity = {};
};

// The whole message, header included. Bytes without a meaning are zero.
Bytes EncodeControllerUpdate(const ControllerRecord& record);

// Nothing when the payload is shorter than 192 bytes; bytes beyond them are not read.
std::optional<ControllerRecord> DecodeControllerUpdate(std::span<const std::uint8_t> payload);

}  // namespace bench
