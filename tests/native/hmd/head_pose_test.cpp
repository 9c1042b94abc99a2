#include "hmd/head_pose.h"

#include <gtest/gtest.h>

#include <numbers>

#include "support/reference_math.h"

namespace ombrel::test {
namespace {

constexpr double kRootOfHalf = 0.70710678118654752;
constexpr double kDegree = std::numbers::pi / 180.0;

void ExpectRotation(const vr::DriverPose_t& pose, double w, double x, double y, double z, double tolerance = 2e-7) {
  EXPECT_NEAR(pose.qRotation.w, w, tolerance);
  EXPECT_NEAR(pose.qRotation.x, x, tolerance);
  EXPECT_NEAR(pose.qRotation.y, y, tolerance);
  EXPECT_NEAR(pose.qRotation.z, z, tolerance);
}

TEST(HeadPose, StandsUprightBeforeAnyTrackingData) {
  LinkPoseRecord head;
  head.orientation = {1, 0, 0, 0};
  head.position = {5, 6, 7};
  head.trackingState = 2;
  const vr::DriverPose_t pose = BuildHeadPose(head, false, MakeRotationOffsets(10, 20, 30));
  ExpectRotation(pose, 1, 0, 0, 0, 0.0);
  EXPECT_EQ(pose.vecPosition[0], 0.0);
  EXPECT_EQ(pose.vecPosition[1], 1.7000000476837158);
  EXPECT_EQ(pose.vecPosition[2], 0.0);
  EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(pose.poseIsValid);
  EXPECT_TRUE(pose.deviceIsConnected);
}

TEST(HeadPose, HasTheFixedFieldsInBothCases) {
  for (const bool hasTrackingData : {false, true}) {
    const vr::DriverPose_t pose = BuildHeadPose({}, hasTrackingData, {});
    EXPECT_EQ(pose.poseTimeOffset, 0.0);
    EXPECT_EQ(pose.qWorldFromDriverRotation.w, 1.0);
    EXPECT_EQ(pose.qDriverFromHeadRotation.w, 1.0);
    EXPECT_TRUE(pose.willDriftInYaw);
    EXPECT_FALSE(pose.shouldApplyHeadModel);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      EXPECT_EQ(pose.vecWorldFromDriverTranslation[axis], 0.0);
      EXPECT_EQ(pose.vecDriverFromHeadTranslation[axis], 0.0);
      EXPECT_EQ(pose.vecVelocity[axis], 0.0);
      EXPECT_EQ(pose.vecAcceleration[axis], 0.0);
      EXPECT_EQ(pose.vecAngularAcceleration[axis], 0.0);
    }
  }
}

TEST(HeadPose, CopiesTheAngularVelocityInBothCases) {
  LinkPoseRecord head;
  head.angularVelocity = {0.1F, -0.2F, 0.3F, 9.0F};
  for (const bool hasTrackingData : {false, true}) {
    const vr::DriverPose_t pose = BuildHeadPose(head, hasTrackingData, {});
    EXPECT_EQ(pose.vecAngularVelocity[0], static_cast<double>(0.1F));
    EXPECT_EQ(pose.vecAngularVelocity[1], static_cast<double>(-0.2F));
    EXPECT_EQ(pose.vecAngularVelocity[2], static_cast<double>(0.3F));
  }
}

TEST(HeadPose, WithoutOffsetsIsTheLinksOrientationAndPositionWidened) {
  LinkPoseRecord head;
  head.orientation = {0.1F, -0.2F, 0.3F, 0.9F};
  head.position = {0.1F, 1.6F, -0.4F};
  const vr::DriverPose_t pose = BuildHeadPose(head, true, MakeRotationOffsets(0, 0, 0));
  ExpectRotation(pose, static_cast<double>(0.9F), static_cast<double>(0.1F), static_cast<double>(-0.2F),
                 static_cast<double>(0.3F), 0.0);
  EXPECT_EQ(pose.vecPosition[0], static_cast<double>(0.1F));
  EXPECT_EQ(pose.vecPosition[1], static_cast<double>(1.6F));
  EXPECT_EQ(pose.vecPosition[2], static_cast<double>(-0.4F));
}

TEST(HeadPose, AYawOffsetOf90DegreesFacesLeft) {
  ExpectRotation(BuildHeadPose({}, true, MakeRotationOffsets(0, 90, 0)), kRootOfHalf, 0, kRootOfHalf, 0);
}

TEST(HeadPose, OffsetsComeFromTheAnglesOfTheirOwnAxes) {
  ExpectRotation(BuildHeadPose({}, true, MakeRotationOffsets(90, 0, 0)), kRootOfHalf, kRootOfHalf, 0, 0);
  ExpectRotation(BuildHeadPose({}, true, MakeRotationOffsets(0, 0, 90)), kRootOfHalf, 0, 0, kRootOfHalf);
  // Pitch and roll together have signs of their own: all four halves positive.
  ExpectRotation(BuildHeadPose({}, true, MakeRotationOffsets(90, 0, 90)), 0.5, 0.5, 0.5, 0.5);
}

TEST(HeadPose, AppliesYawOnTheLeftAndPitchOnTheRight) {
  // Looking up by 90 degrees. On the left, yaw turns about the room's vertical: (1/2, 1/2, 1/2, -1/2).
  LinkPoseRecord head;
  head.orientation = {static_cast<float>(kRootOfHalf), 0, 0, static_cast<float>(kRootOfHalf)};
  ExpectRotation(BuildHeadPose(head, true, MakeRotationOffsets(0, 90, 0)), 0.5, 0.5, 0.5, -0.5);
  // Facing left. On the right, pitch turns about the head's own ear-to-ear axis: the same.
  head.orientation = {0, static_cast<float>(kRootOfHalf), 0, static_cast<float>(kRootOfHalf)};
  ExpectRotation(BuildHeadPose(head, true, MakeRotationOffsets(90, 0, 0)), 0.5, 0.5, 0.5, -0.5);
}

TEST(HeadPose, AgreesWithDoublePrecisionOnRandomTurns) {
  RandomTurns turns(41);
  for (int i = 0; i < 500; ++i) {
    const auto turn = turns.Next(3.0);
    LinkPoseRecord head;
    head.orientation = Narrowed(AboutAxis(turn.axis, turn.angle));
    const auto x = static_cast<int>(turns.Uniform(-180, 180)), y = static_cast<int>(turns.Uniform(-180, 180));
    const vr::DriverPose_t pose = BuildHeadPose(head, true, MakeRotationOffsets(x, y, 0));
    const Quat expected = Product(AboutAxis({0, 1, 0}, y * kDegree),
                                  Product(AboutAxis(turn.axis, turn.angle), AboutAxis({1, 0, 0}, x * kDegree)));
    ExpectRotation(pose, expected.w, expected.v[0], expected.v[1], expected.v[2], 1e-6);
  }
}

struct State {
  std::uint32_t sent;
  vr::ETrackingResult result;
  bool valid;
  bool connected;
};

class TrackingStateTest : public testing::TestWithParam<State> {};

TEST_P(TrackingStateTest, DecidesTheResult) {
  LinkPoseRecord head;
  head.trackingState = GetParam().sent;
  const vr::DriverPose_t pose = BuildHeadPose(head, true, {});
  EXPECT_EQ(pose.result, GetParam().result);
  EXPECT_EQ(pose.poseIsValid, GetParam().valid);
  EXPECT_EQ(pose.deviceIsConnected, GetParam().connected);
}

INSTANTIATE_TEST_SUITE_P(Every, TrackingStateTest,
                         testing::Values(State{0, vr::TrackingResult_Running_OK, true, true},
                                         State{1, vr::TrackingResult_Running_OutOfRange, false, true},
                                         State{2, vr::TrackingResult_Uninitialized, false, false},
                                         State{3, vr::TrackingResult_Running_OK, true, true},
                                         State{5, vr::TrackingResult_Running_OK, true, true},
                                         State{255, vr::TrackingResult_Running_OK, true, true}));

}  // namespace
}  // namespace ombrel::test
