// Every record as bytes, written out by hand.
#include "link/wire.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/bytes.h"

namespace ombrel::test {
namespace {

template <typename Record>
std::vector<std::byte> BytesOf(const Record& record) {
  const std::span<const std::byte> bytes = RecordBytes(record);
  return {bytes.begin(), bytes.end()};
}

std::vector<std::byte> Literal(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
  return bytes;
}

TEST(Wire, AHeaderIsLengthAndThenType) {
  const LinkMessageHeader header{.length = 0x01020304, .type = 0x0A0B0C0D};
  EXPECT_EQ(BytesOf(header), Literal({0x04, 0x03, 0x02, 0x01, 0x0D, 0x0C, 0x0B, 0x0A}));
}

TEST(Wire, FrameSharingInfoHas76BytesInThisOrder) {
  FrameSharingInfo info{};
  info.processId = 0x11223344;
  info.sharedHandle0 = 0x40000A02;
  info.sharedHandle1 = 0x80000B03;
  info.sharedName[0] = 'a';
  info.sharedName[57] = 'z';
  info.invertY = 1;
  std::vector<std::byte> golden = Literal({0x44, 0x33, 0x22, 0x11, 0x02, 0x0A, 0x00, 0x40, 0x03, 0x0B, 0x00, 0x80});
  golden.resize(76);
  golden[12] = std::byte{'a'};
  golden[12 + 57] = std::byte{'z'};
  golden[72] = std::byte{1};
  EXPECT_EQ(BytesOf(info), golden);
}

TEST(Wire, AHapticPulseHas12Bytes) {
  const HapticPulse pulse{
      .controllerId = 0x01020304, .timestampMicroseconds = 0x05060708, .durationMicroseconds = 0x090A, .reserved = 0};
  EXPECT_EQ(BytesOf(pulse), Literal({4, 3, 2, 1, 8, 7, 6, 5, 0x0A, 9, 0, 0}));
}

TEST(Wire, TheCodesOfMessagesAndFormatsAreTheProtocols) {
  EXPECT_EQ(static_cast<int>(LinkMessageType::kFrameSharingInfo), 2);
  EXPECT_EQ(static_cast<int>(LinkMessageType::kTrackingUpdate), 4);
  EXPECT_EQ(static_cast<int>(LinkMessageType::kRecenterRequest), 8);
  EXPECT_EQ(static_cast<int>(LinkMessageType::kFramerateUpdate), 9);
  EXPECT_EQ(static_cast<int>(LinkMessageType::kControllerUpdate), 10);
  EXPECT_EQ(static_cast<int>(LinkMessageType::kHapticPulse), 11);
  EXPECT_EQ(static_cast<int>(LinkMessageType::kShutdownRequest), 14);
  EXPECT_STREQ(kPipeToCompanion, "\\\\.\\pipe\\PellmorOmbrelTransmissionPipeV1In");
  EXPECT_STREQ(kPipeFromCompanion, "\\\\.\\pipe\\PellmorOmbrelTransmissionPipeV1Out");
  EXPECT_EQ(kMaxPayload, 65536U);
}

// Each field holds a number of its own.
Bytes GoldenControllerUpdate() {
  Bytes golden;
  golden.U32(0xFFFFFFFE).U32(2).Fill(8, 0xEE);
  golden.F32({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  golden.Fill(16, 0xEE);
  golden.U32(77).U32(0xEEEEEEEE).U64(0x8000000000000001U).U64(0x0000000200000000U);
  golden.F32({0.5F, -0.5F, 0.25F, -0.25F, 1, 2, 3, 4, 5, 6});
  golden.F64(1.5).F64(-2.5).F64(3.5).F64(-4.5).F64(5.5).F64(-6.5);
  return golden;
}

TEST(Wire, AControllerUpdatesHeadAndPoseLieWhereTheyShould) {
  const Bytes golden = GoldenControllerUpdate();
  ASSERT_EQ(golden.Size(), 192U);
  const auto record = ReadRecord<ControllerUpdate>(golden);
  EXPECT_EQ(record.controllerId, 0xFFFFFFFEU);
  EXPECT_EQ(record.trackingState, 2U);
  EXPECT_EQ(record.pose, (std::array<float, 12>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST(Wire, AControllerUpdatesInputsAndMotionLieWhereTheyShould) {
  const auto record = ReadRecord<ControllerUpdate>(GoldenControllerUpdate());
  EXPECT_EQ(record.state.packetNumber, 77U);
  EXPECT_EQ(record.state.pressedButtons, 0x8000000000000001U);
  EXPECT_EQ(record.state.touchedButtons, 0x0000000200000000U);
  EXPECT_EQ(record.state.axes[0].x, 0.5F);
  EXPECT_EQ(record.state.axes[0].y, -0.5F);
  EXPECT_EQ(record.state.axes[1].x, 0.25F);
  EXPECT_EQ(record.state.axes[4].y, 6.0F);
  EXPECT_EQ(record.acceleration, (std::array{1.5, -2.5, 3.5}));
  EXPECT_EQ(record.velocity, (std::array{-4.5, 5.5, -6.5}));
}

TEST(Wire, ARecordIsTakenFromAnyOffset) {
  const Bytes bytes = Bytes().Fill(3, 9).U32(0x01020304);
  EXPECT_EQ(ReadRecord<std::uint32_t>(bytes, 3), 0x01020304U);
}

}  // namespace
}  // namespace ombrel::test
