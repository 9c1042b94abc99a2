#include "runtime/pose_matrix.h"

#include <cmath>

#include <gtest/gtest.h>

namespace bench {
namespace {

const double kHalfRoot = std::sqrt(0.5);
const vr::HmdQuaternion_t kQuarterTurnLeft = {kHalfRoot, 0.0, kHalfRoot, 0.0};

vr::DriverPose_t IdentityDriverPose() {
  vr::DriverPose_t pose{};
  pose.qWorldFromDriverRotation.w = pose.qDriverFromHeadRotation.w = pose.qRotation.w = 1.0;
  return pose;
}

void ExpectEqual(const runtime::PoseMatrix& actual, const runtime::PoseMatrix& expected) {
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) {
      EXPECT_NEAR(actual.m[row][column], expected.m[row][column], 1e-6F) << "row " << row << " column " << column;
    }
  }
}

TEST(PoseMatrix, AQuarterTurnLeftSendsForwardToTheLeft) {
  const auto matrix = runtime::PoseFromQuaternion(kQuarterTurnLeft, {0.0, 0.0, 0.0});
  // Forward is -z; its image is minus the third column.
  EXPECT_NEAR(-matrix.m[0][2], -1.0F, 1e-6F);
  EXPECT_NEAR(-matrix.m[1][2], 0.0F, 1e-6F);
  EXPECT_NEAR(-matrix.m[2][2], 0.0F, 1e-6F);
}

TEST(PoseMatrix, InverseUndoesThePose) {
  const auto pose = runtime::PoseFromQuaternion({0.5, 0.5, -0.5, 0.5}, {1.0, 2.0, 3.0});
  ExpectEqual(runtime::Multiply(pose, runtime::InvertRigid(pose)), runtime::IdentityPose());
  ExpectEqual(runtime::Multiply(runtime::InvertRigid(pose), pose), runtime::IdentityPose());
}

TEST(PoseMatrix, TheHeadStandsWhereTheDriverSays) {
  vr::DriverPose_t pose = IdentityDriverPose();
  pose.vecPosition[1] = 1.7;
  ExpectEqual(runtime::WorldFromHead(pose), {{{1, 0, 0, 0}, {0, 1, 0, 1.7F}, {0, 0, 1, 0}}});
}

TEST(PoseMatrix, WorldFromDriverTurnsThePosition) {
  vr::DriverPose_t pose = IdentityDriverPose();
  pose.qWorldFromDriverRotation = kQuarterTurnLeft;
  pose.vecWorldFromDriverTranslation[0] = 10.0;
  pose.vecPosition[2] = -1.0;
  const auto matrix = runtime::WorldFromHead(pose);
  EXPECT_NEAR(matrix.m[0][3], 9.0F, 1e-6F);
  EXPECT_NEAR(matrix.m[2][3], 0.0F, 1e-6F);
}

TEST(PoseMatrix, DriverFromHeadIsOnTheHeadsSide) {
  vr::DriverPose_t pose = IdentityDriverPose();
  pose.qRotation = kQuarterTurnLeft;
  pose.vecDriverFromHeadTranslation[2] = -1.0;  // the head is ahead of the tracked point
  EXPECT_NEAR(runtime::WorldFromHead(pose).m[0][3], -1.0F, 1e-6F);
}

}  // namespace
}  // namespace bench
