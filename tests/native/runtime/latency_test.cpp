#include "latency.h"

#include <sstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/percentile.h"

namespace bench {
namespace {

using testing::ElementsAre;

// A pose that differs from others in its place.
TimedPose At(std::int64_t ticks, float x) {
  TimedPose pose{ticks, {1, 0, 0, x, 0, 1, 0, 1.7F, 0, 0, 1, 0}};
  return pose;
}

TEST(CsvTable, LeavesOutABrokenLastLine) {
  std::istringstream stream("a,b\r\n1,2\r\n3\r\n");
  const CsvTable table = ReadCsv(stream);
  ASSERT_EQ(table.rows.size(), 1U);
  EXPECT_EQ(table.rows[0][table.Column("b")], "2");
  EXPECT_THROW(static_cast<void>(table.Column("c")), std::runtime_error);
}

TEST(Latency, ReadsPosesWhateverTheOrderOfColumns) {
  std::istringstream stream(
      "m23,m00,m01,m02,m03,m10,m11,m12,m13,m20,m21,m22,other,qpc\n"
      "12,1,2,3,4,5,6,7,8,9,10,11,x,99\n");
  const auto poses = ReadTimedPoses(ReadCsv(stream));
  ASSERT_EQ(poses.size(), 1U);
  EXPECT_EQ(poses[0].ticks, 99);
  EXPECT_THAT(poses[0].pose, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12));
}

TEST(Latency, EachPoseMeetsItsOwnArrival) {
  const std::vector<TimedPose> sent = {At(100, 0.1F), At(200, 0.2F), At(300, 0.3F)};
  const std::vector<TimedPose> arrived = {At(90, 0.1F), At(105, 0.1F), At(207, 0.2F), At(309, 0.3F)};
  EXPECT_THAT(PoseLatencies(sent, arrived), ElementsAre(5, 7, 9));
}

TEST(Latency, APoseThatNeverArrivedTakesNobodysArrival) {
  const std::vector<TimedPose> sent = {At(100, 0.1F), At(200, 0.2F)};
  const std::vector<TimedPose> arrived = {At(207, 0.2F)};
  EXPECT_THAT(PoseLatencies(sent, arrived), ElementsAre(7));
}

TEST(Latency, EqualPosesAreTakenInTurn) {
  const std::vector<TimedPose> sent = {At(100, 0.1F), At(110, 0.1F)};
  const std::vector<TimedPose> arrived = {At(120, 0.1F), At(140, 0.1F)};
  EXPECT_THAT(PoseLatencies(sent, arrived), ElementsAre(20, 30));
}

TEST(Latency, FramesAreFoundByTheirPose) {
  const std::vector<TimedPose> presented = {At(100, 0.1F), At(200, 0.2F), At(300, 0.3F)};
  const std::vector<TimedPose> held = {At(250, 0.2F), At(350, 0.3F), At(360, 0.9F)};
  EXPECT_THAT(FrameLatencies(presented, held), ElementsAre(50, 50));
}

TEST(Latency, FramesOfOnePoseAreNotGuessedAt) {
  const std::vector<TimedPose> presented = {At(100, 0.1F), At(200, 0.1F), At(300, 0.3F)};
  const std::vector<TimedPose> held = {At(250, 0.1F), At(310, 0.3F)};
  EXPECT_THAT(FrameLatencies(presented, held), ElementsAre(10));
}

TEST(Latency, ByTimeTheLastPresentCounts) {
  const std::vector<TimedPose> presented = {At(100, 0), At(200, 0)};
  const std::vector<TimedPose> held = {At(50, 0), At(130, 0), At(200, 0), At(260, 0)};
  EXPECT_THAT(FrameLatenciesByTime(presented, held), ElementsAre(30, 0, 60));
}

TEST(Percentile, IsTheSmallestThatCoversTheShare) {
  EXPECT_EQ(Percentile({5, 1, 4, 2, 3}, 0.5), 3);
  EXPECT_EQ(Percentile({5, 1, 4, 2, 3}, 0.99), 5);
  EXPECT_EQ(Percentile({7, 8}, 0.5), 7);
  EXPECT_EQ(Percentile({7, 8}, 1), 8);
  EXPECT_EQ(Percentile({}, 0.5), 0);
}

}  // namespace
}  // namespace bench
