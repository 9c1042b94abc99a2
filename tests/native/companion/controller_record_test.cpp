#include "companion/controller_record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "companion/messages.h"
#include "motion/controller_tour.h"

namespace companion {
namespace {

template <typename Value>
Value At(const Bytes& message, std::size_t payloadOffset) {
  Value value;
  std::memcpy(&value, message.data() + kHeaderBytes + payloadOffset, sizeof(value));
  return value;
}

ControllerRecord FullRecord() {
  ControllerRecord record;
  record.controllerId = 0x01020304;
  record.trackingState = 2;
  for (std::size_t i = 0; i < record.pose.size(); ++i) record.pose[i] = static_cast<float>(i) + 0.5F;
  record.packetNumber = 77;
  record.pressedButtons = 0x0000000300000007;
  record.touchedButtons = ButtonBit(ControllerButton::Trackpad);
  record.axes = {Axis{1, 2}, Axis{3, 4}, Axis{5, 6}, Axis{7, 8}, Axis{9, 10}};
  record.acceleration = {11, 12, 13};
  record.velocity = {14, 15, 16};
  return record;
}

TEST(ControllerRecord, EveryFieldStandsAtItsOffset) {
  const Bytes message = EncodeControllerUpdate(FullRecord());
  ASSERT_EQ(message.size(), kHeaderBytes + 192);
  EXPECT_EQ(At<std::uint32_t>(message, 0), 0x01020304U);
  EXPECT_EQ(At<std::uint32_t>(message, 4), 2U);
  EXPECT_EQ(At<float>(message, 16), 0.5F);
  EXPECT_EQ(At<float>(message, 60), 11.5F);
  EXPECT_EQ(At<std::uint32_t>(message, 80), 77U);
  EXPECT_EQ(At<std::uint64_t>(message, 88), 0x0000000300000007U);
  EXPECT_EQ(At<std::uint64_t>(message, 96), 0x0000000100000000U);
  EXPECT_EQ(At<float>(message, 104), 1.0F);
  EXPECT_EQ(At<float>(message, 112), 3.0F);
  EXPECT_EQ(At<float>(message, 140), 10.0F);
  EXPECT_EQ(At<double>(message, 144), 11.0);
  EXPECT_EQ(At<double>(message, 184), 16.0);
}

TEST(ControllerRecord, ComesBack) {
  const Bytes message = EncodeControllerUpdate(FullRecord());
  const auto record = DecodeControllerUpdate(std::span(message).subspan(kHeaderBytes));
  ASSERT_TRUE(record);
  EXPECT_EQ(EncodeControllerUpdate(*record), message);
}

TEST(ControllerRecord, ShortOnesAreNoneAndLongOnesCountToTheirEnd) {
  const Bytes message = EncodeControllerUpdate(FullRecord());
  Bytes payload(message.begin() + kHeaderBytes, message.end());
  payload.pop_back();
  EXPECT_FALSE(DecodeControllerUpdate(payload));
  payload.resize(300);
  ASSERT_TRUE(DecodeControllerUpdate(payload));
  EXPECT_EQ(DecodeControllerUpdate(payload)->packetNumber, 77U);
}

TEST(ControllerTour, TouchesEveryInput) {
  std::uint64_t pressed = 0, touched = 0;
  float trackpad = 0, trigger = 0;
  for (double at = 0; at < bench::kControllerTourSeconds; at += 0.05) {
    const ControllerRecord record = bench::ControllerTour(1, -1, at);
    pressed |= record.pressedButtons;
    touched |= record.touchedButtons;
    trackpad = std::max(trackpad, record.axes[0].x * record.axes[0].y);
    trigger = std::max(trigger, record.axes[1].x);
  }
  EXPECT_EQ(pressed, 0x0000000300000007U);
  EXPECT_EQ(touched, ButtonBit(ControllerButton::Trackpad));
  EXPECT_GT(trackpad, 0.4F);
  EXPECT_GT(trigger, 0.99F);
}

TEST(ControllerTour, VelocityIsTheSlopeOfThePosition) {
  constexpr double kStep = 1e-3;
  const ControllerRecord before = bench::ControllerTour(1, 1, 2 - kStep), at = bench::ControllerTour(1, 1, 2),
                         after = bench::ControllerTour(1, 1, 2 + kStep);
  EXPECT_NEAR((after.pose[3] - before.pose[3]) / (2 * kStep), at.velocity[0], 1e-3);
  EXPECT_NEAR((after.pose[7] - before.pose[7]) / (2 * kStep), at.velocity[1], 1e-3);
}

}  // namespace
}  // namespace companion
