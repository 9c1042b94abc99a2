#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

// The messages that driver and companion exchange, as bytes: little-endian, floats in IEEE-754 single precision unless a
// field says otherwise. docs/protocol.md tells the same to companion authors.
namespace ombrel {

static_assert(std::endian::native == std::endian::little, "records are copied to and from the wire as they are");

inline constexpr const char* kPipeToCompanion = R"(\\.\pipe\PellmorOmbrelTransmissionPipeV1In)";
inline constexpr const char* kPipeFromCompanion = R"(\\.\pipe\PellmorOmbrelTransmissionPipeV1Out)";

enum class LinkMessageType : std::uint32_t {
  kFrameSharingInfo = 2,  // driver to companion
  kTrackingUpdate = 4,
  kRecenterRequest = 8,
  kFramerateUpdate = 9,
  kControllerUpdate = 10,
  kHapticPulse = 11,  // driver to companion
  kShutdownRequest = 14,
};

// How the bytes before a TrackingUpdate's last four encode the head's pose. Codes that are not listed mean kMatrix.
enum class PoseFormat : std::uint32_t {
  kMatrix = 0,
  kRepublish = 1,
  kSensors = 2,
  kEulerAngles = 3,
  kQuaternion = 4,
  kPositionOnly = 5,
  kPoseMatrix = 6,
  kRecenter = 50,
  kTrackingState = 254,
  kRepublishLast = 0x7FFFFFFF,
};

struct LinkMessageHeader {
  std::uint32_t length;  // bytes of payload that follow
  std::uint32_t type;    // LinkMessageType
};
static_assert(sizeof(LinkMessageHeader) == 8);

// Longer payloads end the connection: nothing that a companion sends comes near.
inline constexpr std::size_t kMaxPayload = 64 * 1024;
inline constexpr std::size_t kFrameSharingNameLength = 58;

struct FrameSharingInfo {
  std::uint32_t processId;               // the driver's process, for opening the handles
  std::uint32_t sharedHandle0;           // low 32 bits of output texture 0's shared handle
  std::uint32_t sharedHandle1;           // the same of output texture 1
  std::array<char, 60> sharedName;       // 58 characters, the rest NUL
  std::uint8_t invertY;                  // the renderer's flag
  std::array<std::uint8_t, 3> reserved;  // zero
};
static_assert(sizeof(FrameSharingInfo) == 76 && std::is_trivially_copyable_v<FrameSharingInfo>);
static_assert(offsetof(FrameSharingInfo, sharedHandle0) == 4 && offsetof(FrameSharingInfo, sharedHandle1) == 8);
static_assert(offsetof(FrameSharingInfo, sharedName) == 12 && offsetof(FrameSharingInfo, invertY) == 72);

struct HapticPulse {
  std::uint32_t controllerId;
  std::uint32_t timestampMicroseconds;  // performance counter, low 32 bits
  std::uint16_t durationMicroseconds;   // wraps at 65,536
  std::uint16_t reserved;               // zero
};
static_assert(sizeof(HapticPulse) == 12 && std::is_trivially_copyable_v<HapticPulse>);
static_assert(offsetof(HapticPulse, timestampMicroseconds) == 4 && offsetof(HapticPulse, durationMicroseconds) == 8);

// Buttons and axes of a controller, byte for byte the runtime's VRControllerState_t.
struct ControllerState {
  std::uint32_t packetNumber;
  std::uint32_t gap;
  std::uint64_t pressedButtons;  // bit n is the runtime's button id n
  std::uint64_t touchedButtons;
  struct Axis {
    float x, y;
  };
  std::array<Axis, 5> axes;  // 0: trackpad, 1: trigger in x
};
static_assert(sizeof(ControllerState) == 64 && offsetof(ControllerState, pressedButtons) == 8);
static_assert(offsetof(ControllerState, touchedButtons) == 16 && offsetof(ControllerState, axes) == 24);

struct ControllerUpdate {
  std::uint32_t controllerId;
  std::uint32_t trackingState;  // 0 tracking, 1 out of range, 2 not connected
  std::array<std::uint8_t, 8> unused8;
  std::array<float, 12> pose;  // 3 rows of 4: rotation, and the position in metres as the fourth column
  std::array<std::uint8_t, 16> unused64;
  ControllerState state;
  std::array<double, 3> acceleration;  // metres per second squared
  std::array<double, 3> velocity;      // metres per second
};
static_assert(sizeof(ControllerUpdate) == 192 && std::is_trivially_copyable_v<ControllerUpdate>);
static_assert(offsetof(ControllerUpdate, trackingState) == 4 && offsetof(ControllerUpdate, pose) == 16);
static_assert(offsetof(ControllerUpdate, state) == 80 && offsetof(ControllerUpdate, velocity) == 168);
static_assert(offsetof(ControllerUpdate, acceleration) == 144);

// The record at `offset`. The caller has checked that it fits.
template <typename Record>
[[nodiscard]] Record ReadRecord(std::span<const std::byte> bytes, std::size_t offset = 0) {
  static_assert(std::is_trivially_copyable_v<Record>);
  Record record;
  std::memcpy(static_cast<void*>(&record), bytes.data() + offset, sizeof(Record));
  return record;
}

template <typename Record>
[[nodiscard]] std::span<const std::byte> RecordBytes(const Record& record) {
  static_assert(std::is_trivially_copyable_v<Record>);
  return std::as_bytes(std::span(&record, 1));
}

}  // namespace ombrel
