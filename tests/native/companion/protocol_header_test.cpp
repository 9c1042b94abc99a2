// The companion's header is held against the driver's own: neither includes the other.
#include "ombrel/protocol.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>

#include "companion/messages.h"
#include "link/wire.h"

extern "C" std::size_t WriteFirstMessage(unsigned char* bytes);

namespace {

// Same offset and same size.
#define SAME_FIELD(theirs, field, ours, ourField)                             \
  static_assert(offsetof(theirs, field) == offsetof(ombrel::ours, ourField)); \
  static_assert(sizeof(theirs::field) == sizeof(ombrel::ours::ourField))

SAME_FIELD(OmbrelMessageHeader, length, LinkMessageHeader, length);
SAME_FIELD(OmbrelMessageHeader, type, LinkMessageHeader, type);

static_assert(sizeof(OmbrelFrameSharingInfo) == sizeof(ombrel::FrameSharingInfo));
SAME_FIELD(OmbrelFrameSharingInfo, processId, FrameSharingInfo, processId);
SAME_FIELD(OmbrelFrameSharingInfo, sharedHandle0, FrameSharingInfo, sharedHandle0);
SAME_FIELD(OmbrelFrameSharingInfo, sharedHandle1, FrameSharingInfo, sharedHandle1);
SAME_FIELD(OmbrelFrameSharingInfo, name, FrameSharingInfo, sharedName);
SAME_FIELD(OmbrelFrameSharingInfo, invertY, FrameSharingInfo, invertY);

static_assert(sizeof(OmbrelHapticPulse) == sizeof(ombrel::HapticPulse));
SAME_FIELD(OmbrelHapticPulse, controllerId, HapticPulse, controllerId);
SAME_FIELD(OmbrelHapticPulse, timestampMicroseconds, HapticPulse, timestampMicroseconds);
SAME_FIELD(OmbrelHapticPulse, durationMicroseconds, HapticPulse, durationMicroseconds);

static_assert(sizeof(OmbrelControllerUpdate) == sizeof(ombrel::ControllerUpdate));
SAME_FIELD(OmbrelControllerUpdate, controllerId, ControllerUpdate, controllerId);
SAME_FIELD(OmbrelControllerUpdate, trackingState, ControllerUpdate, trackingState);
SAME_FIELD(OmbrelControllerUpdate, pose, ControllerUpdate, pose);
SAME_FIELD(OmbrelControllerUpdate, packetNumber, ControllerUpdate, state.packetNumber);
SAME_FIELD(OmbrelControllerUpdate, pressedButtons, ControllerUpdate, state.pressedButtons);
SAME_FIELD(OmbrelControllerUpdate, touchedButtons, ControllerUpdate, state.touchedButtons);
static_assert(offsetof(OmbrelControllerUpdate, trackpad) == offsetof(ombrel::ControllerUpdate, state.axes));
SAME_FIELD(OmbrelControllerUpdate, acceleration, ControllerUpdate, acceleration);
SAME_FIELD(OmbrelControllerUpdate, velocity, ControllerUpdate, velocity);

#undef SAME_FIELD

template <typename Code>
constexpr auto Number(Code code) {
  return static_cast<std::uint32_t>(code);
}

TEST(ProtocolHeader, NamesTheDriversPipes) {
  EXPECT_EQ(std::string_view(OMBREL_PIPE_FROM_DRIVER), ombrel::kPipeToCompanion);
  EXPECT_EQ(std::string_view(OMBREL_PIPE_TO_DRIVER), ombrel::kPipeFromCompanion);
}

TEST(ProtocolHeader, NumbersMessagesAsTheDriverDoes) {
  using enum ombrel::LinkMessageType;
  EXPECT_EQ(Number(OMBREL_FRAME_SHARING_INFO), Number(kFrameSharingInfo));
  EXPECT_EQ(Number(OMBREL_TRACKING_UPDATE), Number(kTrackingUpdate));
  EXPECT_EQ(Number(OMBREL_RECENTER_REQUEST), Number(kRecenterRequest));
  EXPECT_EQ(Number(OMBREL_FRAMERATE_UPDATE), Number(kFramerateUpdate));
  EXPECT_EQ(Number(OMBREL_CONTROLLER_UPDATE), Number(kControllerUpdate));
  EXPECT_EQ(Number(OMBREL_HAPTIC_PULSE), Number(kHapticPulse));
  EXPECT_EQ(Number(OMBREL_SHUTDOWN_REQUEST), Number(kShutdownRequest));
}

TEST(ProtocolHeader, NumbersPoseFormatsAsTheDriverDoes) {
  using enum ombrel::PoseFormat;
  EXPECT_EQ(Number(OMBREL_POSE_ROTATION_MATRIX), Number(kMatrix));
  EXPECT_EQ(Number(OMBREL_POSE_REPEAT), Number(kRepublish));
  EXPECT_EQ(Number(OMBREL_POSE_SENSORS), Number(kSensors));
  EXPECT_EQ(Number(OMBREL_POSE_EULER_ANGLES), Number(kEulerAngles));
  EXPECT_EQ(Number(OMBREL_POSE_QUATERNION), Number(kQuaternion));
  EXPECT_EQ(Number(OMBREL_POSE_POSITION_ONLY), Number(kPositionOnly));
  EXPECT_EQ(Number(OMBREL_POSE_MATRIX), Number(kPoseMatrix));
  EXPECT_EQ(Number(OMBREL_POSE_RECENTER), Number(kRecenter));
  EXPECT_EQ(Number(OMBREL_POSE_TRACKING_STATE), Number(kTrackingState));
  EXPECT_EQ(Number(OMBREL_POSE_REPEAT_TOO), Number(kRepublishLast));
}

TEST(ProtocolHeader, HasTheDriversLimits) {
  EXPECT_EQ(std::size_t{OMBREL_MAX_PAYLOAD}, ombrel::kMaxPayload);
  EXPECT_EQ(std::size_t{OMBREL_SHARING_NAME_LENGTH}, ombrel::kFrameSharingNameLength);
}

TEST(ProtocolHeader, WritesTheSameFromC) {
  std::array<unsigned char, 64> bytes{};
  const std::size_t size = WriteFirstMessage(bytes.data());
  EXPECT_EQ(companion::Bytes(bytes.data(), bytes.data() + size), companion::EncodeFramerateUpdate(90));
}

}  // namespace
