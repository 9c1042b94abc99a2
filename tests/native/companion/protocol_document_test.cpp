#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numbers>
#include <string>

#include "companion/controller_record.h"
#include "companion/messages.h"
#include "companion/tracking_update.h"
#include "support/document_hex.h"

namespace companion {
namespace {

const Position kStanding{0, 1.7F, 0};
constexpr float kQuarterTurn = std::numbers::pi_v<float> / 2;
// Exactly representable where it matters, so that no rounding of sines shows in the page's bytes.
const Quat kLeft{0, 0.70710677F, 0, 0.70710677F};
const PoseMatrix kLeftMatrix{0, 0, 1, 0, 0, 1, 0, 1.7F, -1, 0, 0, 0};

Bytes MatrixMessage(PoseFormat format, PoseMatrix matrix) {
  return EncodeTracking(static_cast<std::uint32_t>(format), AsBytes(matrix));
}

Bytes LeftRotation() {
  PoseMatrix rotation = kLeftMatrix;
  rotation[7] = 0;
  return MatrixMessage(PoseFormat::RotationMatrix, rotation);
}

ControllerRecord ExampleController() {
  ControllerRecord record;
  record.controllerId = 7;
  record.pose = ToPoseMatrix(Quat{}, Position{0, 1, -0.5F});
  record.packetNumber = 1;
  record.pressedButtons = ButtonBit(ControllerButton::Trigger);
  record.touchedButtons = ButtonBit(ControllerButton::Trackpad);
  record.axes[0] = {0, 1};
  record.axes[1] = {1, 0};
  record.velocity = {0, 0.5, 0};
  return record;
}

SensorReadings TurningLeft() {
  SensorReadings readings;
  readings.gyroscope[1] = 1;
  return readings;
}

Bytes ExampleSlot() {
  const PoseMatrix pose = ToPoseMatrix(Quat{}, kStanding);
  OmbrelPoseSlot slot{};
  std::copy(pose.begin(), pose.end(), slot.matrix);
  slot.matrix[15] = 1;
  const auto bytes = AsBytes(slot);
  return {bytes.begin(), bytes.end()};
}

// What each block of the page must say, by the coders.
std::map<std::string, Bytes> ExpectedBlocks() {
  const FrameSharingInfo info{
      4660, {0x40000002, 0x40000006}, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuv", false};
  return {
      {"framerate", EncodeFramerateUpdate(90)},
      {"tracking-straight", EncodeQuaternionAndPosition(Quat{}, kStanding)},
      {"tracking-left", EncodeQuaternionAndPosition(kLeft, kStanding)},
      {"frame-sharing-info", EncodeFrameSharingInfo(info)},
      {"slot", ExampleSlot()},
      {"tracking-euler", EncodeEulerAngles(0, kQuarterTurn, 0, kStanding)},
      {"tracking-matrix", LeftRotation()},
      {"tracking-pose-matrix", MatrixMessage(PoseFormat::RotationAndPosition, kLeftMatrix)},
      {"tracking-position", EncodePositionOnly({0.5F, 1.7F, 0})},
      {"tracking-sensors", EncodeSensors(TurningLeft())},
      {"tracking-state", EncodeTrackingState(1)},
      {"recenter", EncodeRecenterRequest()},
      {"tracking-recenter", EncodeWithoutPose(PoseFormat::Recenter)},
      {"controller", EncodeControllerUpdate(ExampleController())},
      {"haptic", EncodeHapticPulse({7, 1'000'000, 3000})},
      {"shutdown", EncodeShutdownRequest()},
  };
}

TEST(ProtocolDocument, ItsExampleSessionIsWhatTheCodersWrite) {
  const auto documented = ReadHexBlocks(ReadDocument());
  const auto expected = ExpectedBlocks();
  for (const auto& [name, bytes] : expected) {
    const auto found = documented.find(name);
    ASSERT_NE(found, documented.end()) << "the page has no block " << name;
    EXPECT_EQ(found->second, bytes) << name << " should read\n" << AsDocumented(bytes);
  }
  EXPECT_EQ(documented.size(), expected.size()) << "the page has a block that nothing checks";
}

TEST(ProtocolDocument, ItsWholeMessagesSayHowLongTheyAre) {
  for (const auto& [name, bytes] : ReadHexBlocks(ReadDocument())) {
    if (name == "slot") continue;
    EXPECT_EQ(ReadAs<OmbrelMessageHeader>(bytes)->length + kHeaderBytes, bytes.size()) << name;
  }
}

// The bytes are read back by hand-written offsets, not by the decoder that mirrors the encoder.
TEST(ProtocolDocument, ItsFrameSharingInfoStandsAtTheTabledOffsets) {
  const auto bytes = ReadHexBlocks(ReadDocument()).at("frame-sharing-info");
  ASSERT_EQ(bytes.size(), 84U);
  EXPECT_EQ(bytes[8] | bytes[9] << 8, 4660);
  EXPECT_EQ(bytes[12], 0x02);
  EXPECT_EQ(bytes[16], 0x06);
  EXPECT_EQ(std::string(bytes.begin() + 20, bytes.begin() + 26), "012345");
  EXPECT_EQ(bytes[20 + 57], 'v');
  EXPECT_EQ(bytes[20 + 58], 0);
  EXPECT_EQ(bytes[80], 0);
}

}  // namespace
}  // namespace companion
