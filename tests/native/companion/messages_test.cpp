#include "companion/messages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace companion {
namespace {

std::span<const std::uint8_t> PayloadOf(const Bytes& message) { return std::span(message).subspan(kHeaderBytes); }

TEST(Messages, HeaderIsLengthThenTypeInLittleEndian) {
  const Bytes payload(0x0102, 0xAA);
  const Bytes message = EncodeMessage(0x0A0B0C0D, payload);
  ASSERT_EQ(message.size(), kHeaderBytes + payload.size());
  EXPECT_EQ(Bytes(message.begin(), message.begin() + 8), (Bytes{0x02, 0x01, 0, 0, 0x0D, 0x0C, 0x0B, 0x0A}));
  EXPECT_EQ(message.back(), 0xAA);
}

TEST(Messages, RequestsWithoutContentsAreBareHeaders) {
  EXPECT_EQ(EncodeRecenterRequest(), (Bytes{0, 0, 0, 0, 8, 0, 0, 0}));
  EXPECT_EQ(EncodeShutdownRequest(), (Bytes{0, 0, 0, 0, 14, 0, 0, 0}));
}

TEST(Messages, FramerateIsFourBytes) {
  EXPECT_EQ(EncodeFramerateUpdate(72), (Bytes{4, 0, 0, 0, 9, 0, 0, 0, 72, 0, 0, 0}));
}

TEST(Messages, FramerateShorterThanFourBytesIsNone) {
  EXPECT_FALSE(DecodeFramerateUpdate(Bytes{60, 0, 0}));
  EXPECT_EQ(DecodeFramerateUpdate(Bytes{60, 0, 0, 0, 9}), 60U);
}

TEST(Messages, HapticPulseStandsByteForByte) {
  const Bytes expected{12, 0, 0, 0, 11, 0, 0, 0, 7, 0, 0, 0, 0x44, 0x33, 0x22, 0x11, 0xA0, 0x86, 0, 0};
  EXPECT_EQ(EncodeHapticPulse({7, 0x11223344, 34464}), expected);
}

TEST(Messages, HapticPulseComesBack) {
  const auto pulse = DecodeHapticPulse(PayloadOf(EncodeHapticPulse({9, 1234567, 3000})));
  ASSERT_TRUE(pulse);
  EXPECT_EQ(pulse->controllerId, 9U);
  EXPECT_EQ(pulse->timestampMicroseconds, 1234567U);
  EXPECT_EQ(pulse->durationMicroseconds, 3000U);
}

TEST(Messages, HapticPulseOfAnotherLengthIsNone) {
  EXPECT_FALSE(DecodeHapticPulse(Bytes(11)));
  EXPECT_FALSE(DecodeHapticPulse(Bytes(13)));
}

class SharingInfoBytes : public testing::Test {
 protected:
  void SetUp() override {
    std::iota(payload_.begin(), payload_.begin() + 12, std::uint8_t{1});
    std::fill_n(payload_.begin() + 12, 58, std::uint8_t{'n'});
  }
  Bytes payload_ = Bytes(76);
};

TEST_F(SharingInfoBytes, FieldsAreReadFromTheirOffsets) {
  payload_[72] = 1;
  const auto info = DecodeFrameSharingInfo(payload_);
  ASSERT_TRUE(info);
  EXPECT_EQ(info->processId, 0x04030201U);
  EXPECT_EQ(info->sharedHandles[0], 0x08070605U);
  EXPECT_EQ(info->sharedHandles[1], 0x0C0B0A09U);
  EXPECT_EQ(info->name, std::string(58, 'n'));
  EXPECT_TRUE(info->invertY);
}

TEST_F(SharingInfoBytes, BytesAfterTheNamesEndAreIgnored) {
  payload_[12 + 5] = 0;
  EXPECT_EQ(DecodeFrameSharingInfo(payload_)->name, "nnnnn");
}

TEST_F(SharingInfoBytes, ANameWithoutAnEndIsNone) {
  payload_[70] = payload_[71] = 'n';
  EXPECT_FALSE(DecodeFrameSharingInfo(payload_));
}

TEST_F(SharingInfoBytes, AnotherLengthIsNone) {
  payload_.pop_back();
  EXPECT_FALSE(DecodeFrameSharingInfo(payload_));
}

TEST_F(SharingInfoBytes, EncoderWritesZerosAfterTheName) {
  const Bytes message = EncodeFrameSharingInfo({1, {2, 3}, "abc", true});
  ASSERT_EQ(message.size(), 84U);
  EXPECT_EQ(message[8 + 12 + 2], 'c');
  EXPECT_TRUE(std::all_of(message.begin() + 8 + 15, message.begin() + 8 + 72, [](auto byte) { return byte == 0; }));
  EXPECT_EQ(message[8 + 72], 1);
}

}  // namespace
}  // namespace companion
