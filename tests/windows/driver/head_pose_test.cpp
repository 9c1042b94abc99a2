// What becomes of the poses that a companion sends: offsets, tracking states, recentring, and who gets them when.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <numbers>

#include "support/link_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

constexpr double kTolerance = 1e-6;
constexpr double kHalfRoot = std::numbers::sqrt2 / 2;

// The reference: Hamilton products and turns about one axis in double precision.
struct Rotation {
  double w = 1, x = 0, y = 0, z = 0;
};

Rotation operator*(const Rotation& p, const Rotation& s) {
  return {p.w * s.w - p.x * s.x - p.y * s.y - p.z * s.z, p.w * s.x + p.x * s.w + p.y * s.z - p.z * s.y,
          p.w * s.y - p.x * s.z + p.y * s.w + p.z * s.x, p.w * s.z + p.x * s.y - p.y * s.x + p.z * s.w};
}

Rotation Turn(double degrees, int axis) {
  const double half = degrees * std::numbers::pi / 360;
  const double s = std::sin(half);
  return {std::cos(half), axis == 0 ? s : 0, axis == 1 ? s : 0, axis == 2 ? s : 0};
}

bench::Quat OnTheWire(const Rotation& r) {
  return {static_cast<float>(r.x), static_cast<float>(r.y), static_cast<float>(r.z), static_cast<float>(r.w)};
}

bench::Bytes Turned(const Rotation& rotation) { return bench::EncodeQuaternionAndPosition(OnTheWire(rotation), {}); }

void ExpectRotation(const vr::DriverPose_t& pose, const Rotation& expected) {
  EXPECT_NEAR(pose.qRotation.w, expected.w, kTolerance);
  EXPECT_NEAR(pose.qRotation.x, expected.x, kTolerance);
  EXPECT_NEAR(pose.qRotation.y, expected.y, kTolerance);
  EXPECT_NEAR(pose.qRotation.z, expected.z, kTolerance);
}

class HeadPoseTest : public LinkTest {};

TEST_F(HeadPoseTest, WithoutOffsetsIsTheOneThatWasSent) {
  Connect();
  const Rotation sent = Turn(40, 1) * Turn(-25, 0) * Turn(10, 2);
  const auto pose = SendForPose(bench::EncodeQuaternionAndPosition(OnTheWire(sent), {0.5F, 1.25F, -2.0F}));
  ExpectRotation(pose, sent);
  EXPECT_THAT(pose.vecPosition, ElementsAre(0.5, 1.25, -2.0));
  EXPECT_EQ(pose.result, vr::TrackingResult_Running_OK);
  EXPECT_TRUE(pose.poseIsValid);
  EXPECT_TRUE(pose.willDriftInYaw);
  EXPECT_TRUE(pose.deviceIsConnected);
  EXPECT_EQ(pose.qWorldFromDriverRotation.w, 1.0);
  EXPECT_EQ(pose.qDriverFromHeadRotation.w, 1.0);
  EXPECT_THAT(pose.vecAngularVelocity, testing::Each(0.0));
}

TEST_F(HeadPoseTest, YawOffsetOf90TurnsALevelHeadToTheLeft) {
  Set("RotationOffsetYDeg", 90);
  Connect();
  ExpectRotation(SendForPose(Turned({})), {kHalfRoot, 0, kHalfRoot, 0});
}

TEST_F(HeadPoseTest, YawOffsetIsAppliedOnTheLeftAndTheOthersOnTheRight) {
  Set("RotationOffsetXDeg", 30);
  Set("RotationOffsetYDeg", -45);
  Set("RotationOffsetZDeg", 20);
  Connect();
  const Rotation head = Turn(70, 1) * Turn(35, 0);
  const Rotation pitchAndRoll = Turn(20, 2) * Turn(30, 0);
  ExpectRotation(SendForPose(Turned(head)), Turn(-45, 1) * (head * pitchAndRoll));
}

TEST_F(HeadPoseTest, OffsetsDoNotTurnAHeadWithoutTrackingData) {
  Set("RotationOffsetYDeg", 90);
  Connect();
  ExpectRotation(runtime.Poses().Latest(0)->pose, {});
}

struct StateCase {
  std::uint8_t state;
  int result;
  bool valid;
  bool connected;
};

class TrackingStateTest : public HeadPoseTest, public ::testing::WithParamInterface<StateCase> {};

TEST_P(TrackingStateTest, IsTold) {
  Connect();
  const auto pose = SendForPose(bench::EncodeTrackingState(GetParam().state));
  EXPECT_EQ(pose.result, GetParam().result);
  EXPECT_EQ(pose.poseIsValid, GetParam().valid);
  EXPECT_EQ(pose.deviceIsConnected, GetParam().connected);
}

INSTANTIATE_TEST_SUITE_P(, TrackingStateTest,
                         testing::Values(StateCase{0, 200, true, true}, StateCase{1, 201, false, true},
                                         StateCase{2, 1, false, false}, StateCase{5, 200, true, true},
                                         StateCase{255, 200, true, true}));

TEST_F(HeadPoseTest, TrackingStateStaysUntilTheNextOne) {
  Connect();
  SendForPose(bench::EncodeTrackingState(2));
  EXPECT_FALSE(SendForPose(Turned({})).deviceIsConnected);
  EXPECT_TRUE(SendForPose(bench::EncodeTrackingState(0)).deviceIsConnected);
}

TEST_F(HeadPoseTest, IsWhatGetPoseAnswers) {
  Connect();
  const auto sent = SendForPose(bench::EncodeQuaternionAndPosition(OnTheWire(Turn(12, 2)), {1, 2, 3}));
  const auto asked = PoseOf(Headset());
  EXPECT_EQ(std::memcmp(&asked, &sent, sizeof(asked)), 0);
}

TEST_F(HeadPoseTest, ComesFromTheLinksThreadWithItsSize) {
  Connect();
  SendForPose(Turned({}));
  EXPECT_EQ(runtime.Poses().Latest(0)->structSize, 280U);
  EXPECT_NE(runtime.Poses().Latest(0)->threadId, GetCurrentThreadId());
}

TEST_F(HeadPoseTest, ChangesNothingBeforeActivation) {
  ConnectInactive();
  Send(bench::EncodeQuaternionAndPosition(OnTheWire(Turn(90, 1)), {1, 2, 3}));
  FenceWithoutPose();
  EXPECT_EQ(runtime.Poses().Count(), 0U);
  EXPECT_THAT(PoseOf(Headset()).vecPosition, ElementsAre(0.0, 1.7000000476837158, 0.0));
}

TEST_F(HeadPoseTest, SentBeforeActivationIsShownByIt) {
  ConnectInactive();
  Send(bench::EncodeQuaternionAndPosition(OnTheWire(Turn(90, 1)), {1, 2, 3}));
  FenceWithoutPose();
  Headset().Activate(0);
  ExpectRotation(runtime.Poses().Latest(0)->pose, Turn(90, 1));
  EXPECT_THAT(runtime.Poses().Latest(0)->pose.vecPosition, ElementsAre(1.0, 2.0, 3.0));
}

TEST_F(HeadPoseTest, IsNotSentAfterDeactivation) {
  Connect();
  SendForPose(Turned({}));
  Headset().Deactivate();
  const std::size_t before = PosesSent();
  Send(Turned(Turn(90, 1)));
  FenceWithoutPose();
  EXPECT_EQ(PosesSent(), before);
  ExpectRotation(PoseOf(Headset()), {});
}

TEST_F(HeadPoseTest, PositionAloneShowsWithTheNextOrientation) {
  Connect();
  SendForPose(bench::EncodeQuaternionAndPosition({}, {1, 2, 3}));
  EXPECT_THAT(SendForPose(bench::EncodePositionOnly({4, 5, 6})).vecPosition, ElementsAre(1.0, 2.0, 3.0));
  EXPECT_THAT(SendForPose(bench::EncodeRotationMatrix({})).vecPosition, ElementsAre(4.0, 5.0, 6.0));
}

TEST_F(HeadPoseTest, RecenteringTurnsAHeadThatFacesLeftForward) {
  Connect();
  ExpectRotation(SendForPose(Turned(Turn(90, 1))), Turn(90, 1));
  Send(bench::EncodeRecenterRequest());
  ExpectRotation(SendForPose(Turned(Turn(90, 1))), {});
  ExpectRotation(SendForPose(Turned(Turn(120, 1) * Turn(20, 0))), Turn(30, 1) * Turn(20, 0));
}

TEST_F(HeadPoseTest, RecenteringByPoseFormatShowsAtOnce) {
  Connect();
  SendForPose(Turned(Turn(-60, 1)));
  ExpectRotation(SendForPose(bench::EncodeWithoutPose(bench::PoseFormat::Recenter)), {});
}

}  // namespace
}  // namespace ombrel::test
