#include "companion/tracking_update.h"

#include <gtest/gtest.h>

#include "companion/messages.h"

namespace companion {
namespace {

struct LengthCase {
  std::uint32_t format;
  std::size_t needed;
};

class TrackingLength : public testing::TestWithParam<LengthCase> {
 protected:
  // A payload of `length` bytes that ends in the format's code.
  Bytes Payload(std::size_t length) const {
    Bytes message = EncodeTracking(GetParam().format, Bytes(length - 4));
    return {message.begin() + kHeaderBytes, message.end()};
  }
};

TEST_P(TrackingLength, IsEnough) { EXPECT_TRUE(DecodeTracking(Payload(GetParam().needed))); }

TEST_P(TrackingLength, OneByteLessIsNot) {
  const Bytes payload = Payload(GetParam().needed);
  const std::span<const std::uint8_t> shorter(payload);
  EXPECT_FALSE(DecodeTracking(shorter.subspan(1)));
}

TEST_P(TrackingLength, ALongerOneIsReadFromTheStart) {
  const auto update = DecodeTracking(Payload(GetParam().needed + 9));
  ASSERT_TRUE(update);
  EXPECT_EQ(update->format, GetParam().format);
}

INSTANTIATE_TEST_SUITE_P(Formats, TrackingLength,
                         testing::Values(LengthCase{0, 52}, LengthCase{1, 4}, LengthCase{2, 40}, LengthCase{3, 40},
                                         LengthCase{4, 32}, LengthCase{5, 16}, LengthCase{6, 52}, LengthCase{50, 4},
                                         LengthCase{254, 5}, LengthCase{0x7FFFFFFF, 4}, LengthCase{7, 52},
                                         LengthCase{49, 52}),
                         [](const auto& test) { return "Format" + std::to_string(test.param.format); });

TEST(TrackingUpdate, EncodersWriteExactlyWhatTheFormatNeeds) {
  EXPECT_EQ(EncodeRotationMatrix({}).size(), 8U + 52);
  EXPECT_EQ(EncodeSensors({}).size(), 8U + 40);
  EXPECT_EQ(EncodeEulerAngles(0, 0, 0, {}).size(), 8U + 40);
  EXPECT_EQ(EncodeQuaternionAndPosition({}, {}).size(), 8U + 32);
  EXPECT_EQ(EncodePositionOnly({}).size(), 8U + 16);
  EXPECT_EQ(EncodeRotationAndPosition({}, {}).size(), 8U + 52);
  EXPECT_EQ(EncodeTrackingState(0).size(), 8U + 5);
  EXPECT_EQ(EncodeWithoutPose(PoseFormat::Repeat).size(), 8U + 4);
}

TEST(TrackingUpdate, QuaternionAndPositionStandByteForByte) {
  const Bytes expected{32, 0, 0,    0,    4, 0, 0,    0,                                         //
                       0,  0, 0x80, 0x3F, 0, 0, 0,    0x40, 0, 0, 0x40, 0x40, 0, 0, 0x80, 0x40,  // 1 2 3 4
                       0,  0, 0xA0, 0x40, 0, 0, 0xC0, 0x40, 0, 0, 0xE0, 0x40,                    // 5 6 7
                       4,  0, 0,    0};
  EXPECT_EQ(EncodeQuaternionAndPosition({1, 2, 3, 4}, {5, 6, 7}), expected);
}

TEST(TrackingUpdate, TheFloatsAfterAnEulerPositionAreNotItsPosition) {
  const Bytes message = EncodeEulerAngles(0.1F, 0.2F, 0.3F, {1, 2, 3});
  const auto update = DecodeTracking(std::span(message).subspan(kHeaderBytes));
  ASSERT_TRUE(update);
  EXPECT_EQ(update->eulerAngles[1], 0.2F);
  EXPECT_EQ(update->position.z, 3.0F);
}

TEST(TrackingUpdate, FewerThanFourBytesAreNone) { EXPECT_FALSE(DecodeTracking(Bytes(3))); }

}  // namespace
}  // namespace companion
