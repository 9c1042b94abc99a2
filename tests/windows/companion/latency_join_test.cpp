#include "companion/latency_join.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PoseMatrix Pose(float yaw, float z) { return ToPoseMatrix(YawPitchToQuaternion({yaw, 0}), {0, 1.7F, z}); }

TimedPoses Log(std::vector<TimedPose> poses) { return {1000, std::move(poses)}; }

TEST(LatencyJoin, MeasuresFromTheClosestPoseNotLater) {
  const auto sent = Log({{100, Pose(0.1F, 0)}, {110, Pose(0.1F, 0.0004F)}, {120, Pose(0.1F, 0.0008F)}});
  EXPECT_THAT(DelaysMs(sent, Log({{125, Pose(0.1F, 0.0004F)}}), 1e-3F), ElementsAre(15));
  EXPECT_THAT(DelaysMs(sent, Log({{115, Pose(0.1F, 0.0008F)}}), 1e-3F), ElementsAre(5)) << "the last was sent later";
}

TEST(LatencyJoin, OfEqualPosesTheNewestCounts) {
  const auto sent = Log({{100, Pose(0.1F, 0)}, {110, Pose(0.1F, 0)}});
  EXPECT_THAT(DelaysMs(sent, Log({{125, Pose(0.1F, 0)}}), 0), ElementsAre(15));
}

TEST(LatencyJoin, LeavesOutWhatWasNeverSentOrTooLongAgo) {
  const auto sent = Log({{100, Pose(0.1F, 0)}});
  EXPECT_THAT(DelaysMs(sent, Log({{125, Pose(0.2F, 0)}, {10101, Pose(0.1F, 0)}}), 1e-3F), IsEmpty());
}

TEST(LatencyJoin, RepeatsInARowAreNoNews) {
  const auto log =
      WithoutRepeats(Log({{1, Pose(0.1F, 0)}, {2, Pose(0.1F, 0)}, {3, Pose(0.2F, 0)}, {4, Pose(0.1F, 0)}}));
  ASSERT_EQ(log.poses.size(), 3U);
  EXPECT_EQ(log.poses[1].ticks, 3);
}

TEST(LatencyJoin, ReadsColumnsByTheirNames) {
  std::istringstream csv(
      "frame,qpc,other,qpc_frequency,m00,m01,m02,m03,m10,m11,m12,m13,m20,m21,m22,m23,m30\r\n"
      "0,5000,x,1000,0,1,2,3,4,5,6,7,8,9,10,11,0\r\n"
      "1,,x,1000,0,1,2,3,4,5,6,7,8,9,10,11,0\r\n");
  const TimedPoses log = ReadTimedPoses(csv);
  EXPECT_EQ(log.ticksPerSecond, 1000);
  ASSERT_EQ(log.poses.size(), 1U);
  EXPECT_EQ(log.poses[0].ticks, 5000);
  EXPECT_EQ(log.poses[0].pose[11], 11.0F);
}

TEST(LatencyJoin, AMissingColumnIsAnError) {
  std::istringstream csv("qpc,qpc_frequency,m00\n");
  EXPECT_THROW(ReadTimedPoses(csv), std::runtime_error);
}

}  // namespace
}  // namespace bench
