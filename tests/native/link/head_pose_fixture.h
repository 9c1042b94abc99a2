#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "link/head_pose_tracker.h"
#include "support/bytes.h"
#include "support/near.h"

namespace ombrel::test {

// A tracker that was made at 1000 ms; each message comes a millisecond after the one before.
class HeadPoseTrackerTest : public testing::Test {
 protected:
  using Outcome = HeadPoseTracker::Outcome;

  // A quarter-turn to the left; the fourth column counts up from `fourth`.
  static Bytes QuarterLeftMatrix(float fourth) {
    return Bytes().F32({0, 0, 1, fourth, 0, 1, 0, fourth + 1, -1, 0, 0, fourth + 2});
  }
  Outcome Apply(std::span<const std::byte> pose, std::uint32_t format) {
    return tracker_.Apply(Bytes().Append(pose).U32(format), ++now_);
  }
  [[nodiscard]] const LinkPoseRecord& Record() const { return tracker_.Record(); }

  void ExpectOrientation(const Quaternion& expected) const {
    EXPECT_NEAR(Record().orientation.x, expected.x, 5e-7);
    EXPECT_NEAR(Record().orientation.y, expected.y, 5e-7);
    EXPECT_NEAR(Record().orientation.z, expected.z, 5e-7);
    EXPECT_NEAR(Record().orientation.w, expected.w, 5e-7);
  }
  static void ExpectSameButTimestamp(const LinkPoseRecord& actual, const LinkPoseRecord& expected) {
    EXPECT_EQ(actual.orientation, expected.orientation);
    EXPECT_EQ(actual.rawOrientation, expected.rawOrientation);
    EXPECT_EQ(actual.angularVelocity, expected.angularVelocity);
    EXPECT_EQ(actual.reserved, expected.reserved);
    EXPECT_EQ(actual.position, expected.position);
    EXPECT_EQ(actual.spare, expected.spare);
    EXPECT_EQ(actual.spare8, expected.spare8);
    EXPECT_EQ(actual.trackingState, expected.trackingState);
  }

  std::uint64_t now_ = 1000;
  HeadPoseTracker tracker_{now_};
};

}  // namespace ombrel::test
