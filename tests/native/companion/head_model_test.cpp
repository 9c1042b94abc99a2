#include "companion/head_model.h"

#include <gtest/gtest.h>

#include <cmath>

#include "motion/head_motion.h"

namespace companion {
namespace {

void ExpectPose(const HeadModel& model, const Quat& rotation, const Position& position, float tolerance = 1e-5F) {
  const PoseMatrix expected = ToPoseMatrix(rotation, position), actual = model.Published();
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "element " << i;
}

const YawPitch kLook{0.8F, -0.4F};
const Position kHead{0.1F, 1.6F, -0.2F};

class HeadModelFormats : public testing::TestWithParam<PoseFormat> {};

TEST_P(HeadModelFormats, AllBringTheSamePose) {
  HeadModel model;
  for (const Bytes& message : bench::EncodeHeadPose(GetParam(), kLook, kHead, model)) model.Apply(message);
  // The filter behind format 2 normalises by an approximation that is good to a few parts in a thousand.
  ExpectPose(model, YawPitchToQuaternion(kLook), kHead, GetParam() == PoseFormat::Sensors ? 5e-3F : 1e-5F);
}

INSTANTIATE_TEST_SUITE_P(Formats, HeadModelFormats,
                         testing::Values(PoseFormat::RotationMatrix, PoseFormat::Sensors, PoseFormat::EulerAngles,
                                         PoseFormat::QuaternionAndPosition, PoseFormat::RotationAndPosition));

TEST(HeadModel, StartsStandingAndLookingAhead) { ExpectPose(HeadModel(), {}, {0, 1.7F, 0}); }

TEST(HeadModel, APositionAloneShowsWithTheNextPose) {
  HeadModel model;
  EXPECT_FALSE(model.Apply(EncodePositionOnly(kHead)));
  ExpectPose(model, {}, {0, 1.7F, 0});
  EXPECT_TRUE(model.Apply(EncodeWithoutPose(PoseFormat::Repeat)));
  ExpectPose(model, {}, kHead);
}

TEST(HeadModel, ARecenterRequestShowsWithTheNextPose) {
  HeadModel model;
  const Quat left = YawPitchToQuaternion({1, 0});
  model.Apply(EncodeQuaternionAndPosition(left, kHead));
  EXPECT_FALSE(model.Apply(EncodeRecenterRequest()));
  ExpectPose(model, left, kHead);
  EXPECT_TRUE(model.Apply(EncodeWithoutPose(PoseFormat::RepeatToo)));
  ExpectPose(model, {}, kHead);
}

TEST(HeadModel, PoseFormat50RecentersAtOnce) {
  HeadModel model;
  model.Apply(EncodeQuaternionAndPosition(YawPitchToQuaternion({1, 0}), kHead));
  EXPECT_TRUE(model.Apply(EncodeWithoutPose(PoseFormat::Recenter)));
  ExpectPose(model, {}, kHead);
}

TEST(HeadModel, TrackingStateIsASingleByte) {
  HeadModel model;
  EXPECT_TRUE(model.Apply(EncodeTrackingState(2)));
  EXPECT_EQ(model.TrackingState(), 2U);
}

TEST(HeadModel, ShortMessagesChangeNothing) {
  HeadModel model;
  EXPECT_FALSE(model.Apply(EncodeTracking(4, Bytes(27))));
  ExpectPose(model, {}, {0, 1.7F, 0});
}

TEST(SensorFollower, TurnsByTheRateOverSeventySix) {
  SensorFollower follower;
  SensorReadings readings;
  readings.gyroscope[1] = 1;
  for (int i = 0; i < 76; ++i) follower.Step(readings);
  const Quat q = Normalise(follower.Orientation());
  EXPECT_NEAR(2 * std::atan2(q.y, q.w), 1.0F, 1e-3F);
}

TEST(SensorFollower, GravityPullsItsZAxisUp) {
  SensorFollower follower;
  SensorReadings leaning;
  leaning.accelerometer[1] = std::sin(0.3F);
  leaning.accelerometer[2] = std::cos(0.3F);
  for (int i = 0; i < 76 * 20; ++i) follower.Step(leaning);
  const Quat q = Normalise(follower.Orientation());
  EXPECT_NEAR(2 * std::atan2(q.x, q.w), 0.3F, 5e-3F);
}

}  // namespace
}  // namespace companion
