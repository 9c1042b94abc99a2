#include "link/head_pose_tracker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "head_pose_fixture.h"

namespace ombrel::test {
namespace {

TEST_F(HeadPoseTrackerTest, StartsUprightAtTheDefaultHeight) {
  EXPECT_EQ(Record().orientation, Quaternion{});
  EXPECT_EQ(Record().rawOrientation, Quaternion{});
  EXPECT_EQ(Record().position, (Vector3{0.0F, 1.7F, 0.0F}));
  EXPECT_EQ(Record().trackingState, 0U);
  EXPECT_EQ(Record().timestamp, 1000U);
}

TEST_F(HeadPoseTrackerTest, AMatrixReplacesTheOrientationAndKeepsThePosition) {
  EXPECT_EQ(Apply(QuarterLeftMatrix(9.0F), 0), Outcome::kPublished);
  ExpectOrientation({0.0F, kRoot, 0.0F, kRoot});
  EXPECT_EQ(Record().position, (Vector3{0.0F, 1.7F, 0.0F}));
  EXPECT_EQ(Record().timestamp, 1001U);
}

TEST_F(HeadPoseTrackerTest, UnknownFormatsAreMatricesThatKeepThePosition) {
  for (const std::uint32_t format : {7U, 49U, 51U, 253U, 255U, 0x80000000U, 0xFFFFFFFFU}) {
    HeadPoseTracker fresh(0);
    EXPECT_EQ(fresh.Apply(Bytes().Append(QuarterLeftMatrix(0.0F)).U32(format), 1), Outcome::kPublished);
    EXPECT_NEAR(fresh.Record().rawOrientation.y, kRoot, 1e-6) << format;
    EXPECT_EQ(fresh.Record().position, (Vector3{0.0F, 1.7F, 0.0F})) << format;
  }
}

TEST_F(HeadPoseTrackerTest, TwoFormatsOnlyPublishAgain) {
  ASSERT_EQ(Apply(Bytes().F32({0.5F, 0.5F, 0.5F, 0.5F, 1, 2, 3}), 4), Outcome::kPublished);
  const LinkPoseRecord before = Record();
  for (const std::uint32_t format : {1U, 0x7FFFFFFFU}) {
    EXPECT_EQ(Apply({}, format), Outcome::kPublished);
    EXPECT_EQ(Record().timestamp, now_);
    ExpectSameButTimestamp(Record(), before);
  }
}

TEST_F(HeadPoseTrackerTest, SensorsFeedTheFilter) {
  OrientationFilter filter;
  const SensorSample sample{{1, 2, 3}, {0.5F, 0.25F, 9}, {20, 1, -40}};
  for (int i = 0; i < 3; ++i) {
    filter.Update(sample);
    EXPECT_EQ(Apply(Bytes().F32({1, 2, 3, 0.5F, 0.25F, 9, 20, 1, -40}), 2), Outcome::kPublished);
    EXPECT_EQ(Record().rawOrientation, filter.Orientation());
  }
  EXPECT_EQ(Record().position, (Vector3{0.0F, 1.7F, 0.0F}));
}

TEST_F(HeadPoseTrackerTest, AnglesComeWithAPositionAndTwoSpareFields) {
  const Bytes pose = Bytes().F32({1.5707964F, 1.5707964F, 0, 7, 8, 9, 10}).U64(0x0807060504030201U);
  EXPECT_EQ(Apply(pose, 3), Outcome::kPublished);
  ExpectOrientation({0.5F, 0.5F, -0.5F, 0.5F});
  EXPECT_EQ(Record().position, (Vector3{7, 8, 9}));
  EXPECT_EQ(Record().spare, 10.0F);
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(std::to_integer<std::size_t>(Record().spare8[i]), i + 1);
}

TEST_F(HeadPoseTrackerTest, AQuaternionComesWithAPosition) {
  EXPECT_EQ(Apply(Bytes().F32({0, 0.6F, 0, 0.8F, 1, 2, 3}), 4), Outcome::kPublished);
  ExpectOrientation({0, 0.6F, 0, 0.8F});
  EXPECT_EQ(Record().position, (Vector3{1, 2, 3}));
}

TEST_F(HeadPoseTrackerTest, AQuaternionIsKeptAsItCameAndPublishedNormalised) {
  EXPECT_EQ(Apply(Bytes().F32({0, 6, 0, 8, 1, 2, 3}), 4), Outcome::kPublished);
  EXPECT_EQ(Record().rawOrientation, (Quaternion{0, 6, 0, 8}));
  EXPECT_NEAR(Record().orientation.y, 0.6F, 1e-6);
  EXPECT_NEAR(Record().orientation.w, 0.8F, 1e-6);
}

TEST_F(HeadPoseTrackerTest, AZeroQuaternionStaysZero) {
  EXPECT_EQ(Apply(Bytes().F32({0, 0, 0, 0, 1, 2, 3}), 4), Outcome::kPublished);
  EXPECT_EQ(Record().orientation, (Quaternion{0, 0, 0, 0}));
}

TEST_F(HeadPoseTrackerTest, APositionAloneIsStoredAndShowsWithTheNextPose) {
  EXPECT_EQ(Apply(Bytes().F32({4, 5, 6}), 5), Outcome::kStored);
  EXPECT_EQ(Record().timestamp, 1000U);
  EXPECT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  EXPECT_EQ(Record().position, (Vector3{4, 5, 6}));
}

TEST_F(HeadPoseTrackerTest, APoseMatrixReplacesBoth) {
  EXPECT_EQ(Apply(QuarterLeftMatrix(3.0F), 6), Outcome::kPublished);
  ExpectOrientation({0.0F, kRoot, 0.0F, kRoot});
  EXPECT_EQ(Record().position, (Vector3{3.0F, 4.0F, 5.0F}));
}

TEST_F(HeadPoseTrackerTest, MatricesOfAHalfTurnComeOutDifferently) {
  const Bytes halfTurn = Bytes().F32({-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0});
  EXPECT_EQ(Apply(halfTurn, 0), Outcome::kPublished);
  ExpectOrientation({0.0F, -0.24253563F, 0.97014250F, 0.0F});
  EXPECT_EQ(Apply(halfTurn, 6), Outcome::kPublished);
  EXPECT_EQ(Record().orientation, (Quaternion{0, 0, 0, 0}));
}

TEST_F(HeadPoseTrackerTest, ATrackingStateIsOneByte) {
  EXPECT_EQ(Apply(Bytes().U8(2), 254), Outcome::kPublished);
  EXPECT_EQ(Record().trackingState, 2U);
  EXPECT_EQ(Apply(Bytes().U8(255), 254), Outcome::kPublished);
  EXPECT_EQ(Record().trackingState, 255U);
  EXPECT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  EXPECT_EQ(Record().trackingState, 255U);
}

TEST_F(HeadPoseTrackerTest, RecenteringByFormatPublishesWhatItChanged) {
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  EXPECT_EQ(Apply({}, 50), Outcome::kPublished);
  ExpectOrientation({0, 0, 0, 1});
  EXPECT_NEAR(Record().rawOrientation.y, kRoot, 1e-6);
}

TEST_F(HeadPoseTrackerTest, RecenteringByMessageShowsWithTheNextPose) {
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  tracker_.Recenter();
  ExpectOrientation({0.0F, kRoot, 0.0F, kRoot});
  EXPECT_EQ(Apply({}, 1), Outcome::kPublished);
  ExpectOrientation({0, 0, 0, 1});
}

TEST_F(HeadPoseTrackerTest, RecenteringAgainReplacesTheOffset) {
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  tracker_.Recenter();
  ASSERT_EQ(Apply(Bytes().F32({0, 0, 0, 1, 0, 0, 0}), 4), Outcome::kPublished);
  ExpectOrientation({0.0F, -kRoot, 0.0F, kRoot});
  tracker_.Recenter();
  EXPECT_EQ(Apply({}, 1), Outcome::kPublished);
  ExpectOrientation({0, 0, 0, 1});
}

TEST_F(HeadPoseTrackerTest, TurnsByTheOffsetOnTheLeft) {
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  tracker_.Recenter();
  // (-j + 1)/root 2 times (i + 1)/root 2; the other way round, z would be negative.
  ASSERT_EQ(Apply(Bytes().F32({kRoot, 0, 0, kRoot, 0, 0, 0}), 4), Outcome::kPublished);
  ExpectOrientation({0.5F, -0.5F, 0.5F, 0.5F});
}

TEST_F(HeadPoseTrackerTest, RecenteringAnUprightHeadTakesTheOffsetAway) {
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  tracker_.Recenter();
  ASSERT_EQ(Apply(Bytes().F32({0, 0, 0, 1, 0, 0, 0}), 4), Outcome::kPublished);
  tracker_.Recenter();
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  ExpectOrientation({0.0F, kRoot, 0.0F, kRoot});
}

TEST_F(HeadPoseTrackerTest, NoFormatTellsOfAMotion) {
  for (const std::uint32_t format : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 50U, 254U, 0x7FFFFFFFU}) {
    EXPECT_NE(Apply(Bytes().F32({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), format), Outcome::kTooShort);
    for (const float rate : Record().angularVelocity) EXPECT_EQ(rate, 0.0F) << format;
  }
}

TEST_F(HeadPoseTrackerTest, OneNumberThatIsNoneSpoilsTheWholeOrientationOnce) {
  const std::pair<std::uint32_t, Bytes> spoilt[] = {{0, Bytes().F32({1, 0, 0, 0, 0, 1, kNan, 0, 0, 0, 1, 0})},
                                                    {3, Bytes().F32({0, kNan, 0, 1, 2, 3, 0, 0, 0})},
                                                    {4, Bytes().F32({0, 0, INFINITY, 1, 1, 2, 3})}};
  for (const auto& [format, pose] : spoilt) {
    EXPECT_EQ(Apply(pose, format), Outcome::kPublished);
    const Quaternion q = Record().orientation;
    for (const float part : {q.x, q.y, q.z, q.w}) EXPECT_TRUE(std::isnan(part)) << format;
    ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
    ExpectOrientation({0.0F, kRoot, 0.0F, kRoot});
  }
}

TEST_F(HeadPoseTrackerTest, AnOrientationThatIsNotANumberIsNotRecenteredOn) {
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  tracker_.Recenter();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  ASSERT_EQ(Apply(Bytes().F32({nan, 0, 0, 1, 0, 0, 0}), 4), Outcome::kPublished);
  tracker_.Recenter();
  EXPECT_EQ(Apply({}, 50), Outcome::kPublished);
  ASSERT_EQ(Apply(QuarterLeftMatrix(0.0F), 0), Outcome::kPublished);
  ExpectOrientation({0, 0, 0, 1});
}

TEST_F(HeadPoseTrackerTest, AnOverflowingQuaternionDoesNoHarmToTheNext) {
  for (const float huge : {3e38F, 1e-45F, -std::numeric_limits<float>::infinity()}) {
    EXPECT_EQ(Apply(Bytes().F32({huge, huge, huge, huge, huge, huge, huge}), 4), Outcome::kPublished);
    EXPECT_EQ(Apply({}, 50), Outcome::kPublished);
  }
  EXPECT_EQ(Apply(Bytes().F32({0, 0.6F, 0, 0.8F, 1, 2, 3}), 4), Outcome::kPublished);
  EXPECT_TRUE(IsFinite(Record().orientation));
}

}  // namespace
}  // namespace ombrel::test
