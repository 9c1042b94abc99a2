#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "companion/rotation.h"
#include "companion/wire_bytes.h"
#include "ombrel/protocol.h"

namespace companion {

// Bit numbers of pressedButtons and touchedButtons.
enum class ControllerButton : std::uint32_t {
  System = OMBREL_BUTTON_SYSTEM,
  ApplicationMenu = OMBREL_BUTTON_APPLICATION_MENU,
  Grip = OMBREL_BUTTON_GRIP,
  Trackpad = OMBREL_BUTTON_TRACKPAD,
  Trigger = OMBREL_BUTTON_TRIGGER,
};

constexpr std::uint64_t ButtonBit(ControllerButton button) {
  return OMBREL_BUTTON_MASK(static_cast<std::uint32_t>(button));
}

struct Axis {
  float x = 0;
  float y = 0;
};

// What a ControllerUpdate says of one controller. Metres, metres per second, right-handed axes with y up.
struct ControllerRecord {
  std::uint32_t controllerId = 0;  // any number; each new one makes a new controller
  std::uint32_t trackingState = OMBREL_TRACKING;
  PoseMatrix pose = IdentityPose();
  std::uint32_t packetNumber = 0;  // without effect
  std::uint64_t pressedButtons = 0;
  std::uint64_t touchedButtons = 0;
  std::array<Axis, 5> axes = {};  // 0 trackpad, -1 to 1; 1 trigger, its pull in x, 0 to 1; others without effect
  std::array<double, 3> acceleration = {};
  std::array<double, 3> velocity = {};
};

// The whole message, header included. Bytes without a meaning are zero.
Bytes EncodeControllerUpdate(const ControllerRecord& record);

// Nothing when the payload is shorter than 192 bytes; bytes beyond them are not read.
std::optional<ControllerRecord> DecodeControllerUpdate(std::span<const std::uint8_t> payload);

}  // namespace companion
