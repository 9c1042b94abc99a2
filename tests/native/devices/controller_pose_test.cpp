// The pose of a controller: what GetPose answers and what the runtime is sent, field by field.
#include <cmath>
#include <cstring>
#include <limits>

#include "controller_fixture.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

auto Numbers(const vr::HmdQuaternion_t& q) { return std::vector<double>{q.w, q.x, q.y, q.z}; }

class ControllerPoseTest : public ControllerTest {
 protected:
  void SetUp() override { Activate(); }
  // What the runtime was sent, which must be what GetPose answers.
  vr::DriverPose_t Send(const companion::ControllerRecord& record) {
    const std::size_t before = PosesSent();
    SendRecord(record);
    EXPECT_EQ(PosesSent(), before + 1);
    const vr::DriverPose_t sent = runtime_.Poses().Latest(kIndex).value().pose;
    const vr::DriverPose_t asked = Pose();
    EXPECT_EQ(std::memcmp(&sent, &asked, sizeof(sent)), 0);
    return sent;
  }
  static companion::ControllerRecord Turned(float m00, float m11, float m22) {
    companion::ControllerRecord record;
    record.pose = {m00, 0, 0, 0, 0, m11, 0, 0, 0, 0, m22, 0};
    return record;
  }
};

TEST_F(ControllerPoseTest, IsEmptyButForOneNumberUntilARecord) {
  const vr::DriverPose_t pose = Pose();
  vr::DriverPose_t expected{};
  expected.qRotation.w = 1.0;
  EXPECT_EQ(std::memcmp(&pose, &expected, sizeof(pose)), 0);
  EXPECT_EQ(PosesSent(), 0U);
}

TEST_F(ControllerPoseTest, TakesPositionVelocityAndAcceleration) {
  companion::ControllerRecord record;
  record.pose[3] = 1.5F;
  record.pose[7] = -2.25F;
  record.pose[11] = 0.1F;
  record.velocity = {1, 2, 3};
  record.acceleration = {-4, -5, -6};
  const vr::DriverPose_t pose = Send(record);
  EXPECT_THAT(pose.vecPosition, ElementsAre(1.5, -2.25, static_cast<double>(0.1F)));
  EXPECT_THAT(pose.vecVelocity, ElementsAre(1, 2, 3));
  EXPECT_THAT(pose.vecAcceleration, ElementsAre(-4, -5, -6));
}

TEST_F(ControllerPoseTest, FillsTheRestWithConstants) {
  const vr::DriverPose_t pose = Send({});
  EXPECT_EQ(pose.poseTimeOffset, 0.04);
  EXPECT_THAT(Numbers(pose.qWorldFromDriverRotation), ElementsAre(1, 0, 0, 0));
  EXPECT_THAT(Numbers(pose.qDriverFromHeadRotation), ElementsAre(1, 0, 0, 0));
  EXPECT_THAT(pose.vecWorldFromDriverTranslation, ElementsAre(0, 0, 0));
  EXPECT_THAT(pose.vecDriverFromHeadTranslation, ElementsAre(0, 0, 0));
  EXPECT_THAT(pose.vecAngularVelocity, ElementsAre(0, 0, 0));
  EXPECT_THAT(pose.vecAngularAcceleration, ElementsAre(0, 0, 0));
  EXPECT_FALSE(pose.willDriftInYaw);
  EXPECT_FALSE(pose.shouldApplyHeadModel);
}

TEST_F(ControllerPoseTest, FacesForwardByTheIdentity) {
  EXPECT_THAT(Numbers(Send(Turned(1, 1, 1)).qRotation), ElementsAre(1, 0, 0, 0));
}

TEST_F(ControllerPoseTest, HasNoRotationAfterAHalfTurnAboutAnAxis) {
  EXPECT_THAT(Numbers(Send(Turned(1, -1, -1)).qRotation), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(Numbers(Send(Turned(-1, 1, -1)).qRotation), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(Numbers(Send(Turned(-1, -1, 1)).qRotation), ElementsAre(0, 0, 0, 0));
}

TEST_F(ControllerPoseTest, TurnsAQuarterAboutEachAxisToEitherSide) {
  for (const float side : {1.0F, -1.0F}) {
    const double half = side * 0.70710678118654752;
    companion::ControllerRecord x, y, z;
    x.pose = {1, 0, 0, 0, 0, 0, -side, 0, 0, side, 0, 0};
    y.pose = {0, 0, side, 0, 0, 1, 0, 0, -side, 0, 0, 0};
    z.pose = {0, -side, 0, 0, side, 0, 0, 0, 0, 0, 1, 0};
    const auto near = [](double value) { return testing::DoubleNear(value, 1e-7); };
    EXPECT_THAT(Numbers(Send(x).qRotation), ElementsAre(near(std::abs(half)), near(half), 0, 0));
    EXPECT_THAT(Numbers(Send(y).qRotation), ElementsAre(near(std::abs(half)), 0, near(half), 0));
    EXPECT_THAT(Numbers(Send(z).qRotation), ElementsAre(near(std::abs(half)), 0, 0, near(half)));
  }
}

struct StateCase {
  std::uint32_t state;
  vr::ETrackingResult result;
  bool valid;
  bool connected;
};

class ControllerStateTest : public ControllerPoseTest, public testing::WithParamInterface<StateCase> {};

TEST_P(ControllerStateTest, DecidesWhatThePoseIsWorth) {
  companion::ControllerRecord record;
  record.trackingState = GetParam().state;
  const vr::DriverPose_t pose = Send(record);
  EXPECT_EQ(pose.result, GetParam().result);
  EXPECT_EQ(pose.poseIsValid, GetParam().valid);
  EXPECT_EQ(pose.deviceIsConnected, GetParam().connected);
}

INSTANTIATE_TEST_SUITE_P(, ControllerStateTest,
                         testing::Values(StateCase{0, vr::TrackingResult_Running_OK, true, true},
                                         StateCase{1, vr::TrackingResult_Running_OutOfRange, false, true},
                                         StateCase{2, vr::TrackingResult_Uninitialized, false, false},
                                         StateCase{3, vr::TrackingResult_Running_OK, true, true},
                                         StateCase{0xFFFFFFFF, vr::TrackingResult_Running_OK, true, true}));

TEST_F(ControllerPoseTest, PassesNumbersThatAreNotFiniteOn) {
  const double infinity = std::numeric_limits<double>::infinity();
  companion::ControllerRecord record = Turned(1, std::numeric_limits<float>::quiet_NaN(), 1);
  record.pose[3] = std::numeric_limits<float>::infinity();
  record.velocity = {0, -infinity, 0};
  record.acceleration = {0, 0, infinity};
  const vr::DriverPose_t pose = Send(record);
  EXPECT_THAT(Numbers(pose.qRotation), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(pose.vecPosition, ElementsAre(infinity, 0, 0));
  EXPECT_THAT(pose.vecVelocity, ElementsAre(0, -infinity, 0));
  EXPECT_THAT(pose.vecAcceleration, ElementsAre(0, 0, infinity));
  EXPECT_TRUE(pose.poseIsValid);
}

TEST_F(ControllerPoseTest, IsValidAgainAfterItWasLost) {
  companion::ControllerRecord lost;
  lost.trackingState = 2;
  Send(lost);
  EXPECT_TRUE(Send({}).deviceIsConnected);
}

}  // namespace
}  // namespace ombrel::test
