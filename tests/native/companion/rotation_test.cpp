#include "companion/rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace companion {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;

Quat About(float x, float y, float z, float angle) {
  return {x * std::sin(angle / 2), y * std::sin(angle / 2), z * std::sin(angle / 2), std::cos(angle / 2)};
}

void ExpectNear(const Quat& actual, const Quat& expected) {
  EXPECT_NEAR(actual.x, expected.x, 1e-6F);
  EXPECT_NEAR(actual.y, expected.y, 1e-6F);
  EXPECT_NEAR(actual.z, expected.z, 1e-6F);
  EXPECT_NEAR(actual.w, expected.w, 1e-6F);
}

TEST(Rotation, EulerAnglesPitchThenRollThenYaw) {
  const Quat expected = Multiply(About(0, 1, 0, 0.9F), Multiply(About(0, 0, 1, 0.4F), About(1, 0, 0, -0.7F)));
  ExpectNear(EulerToQuaternion(-0.7F, 0.9F, 0.4F), expected);
}

TEST(Rotation, YawLooksLeftAndPitchLooksUp) {
  const YawPitch look = LookDirection(ToPoseMatrix(YawPitchToQuaternion({0.5F, 0.3F}), {}));
  EXPECT_NEAR(look.yaw, 0.5F, 1e-6F);
  EXPECT_NEAR(look.pitch, 0.3F, 1e-6F);
  const PoseMatrix left = ToPoseMatrix(YawPitchToQuaternion({kPi / 2, 0}), {});
  EXPECT_NEAR(-left[2], -1.0F, 1e-6F) << "straight ahead turned left must point to -x";
}

TEST(Rotation, BothReadingsOfAMatrixGiveTheRotationBack) {
  for (const Quat& q : {About(1, 0, 0, 0.6F), About(0, 1, 0, -2.5F), About(0, 0, 1, 1.2F),
                        Multiply(About(0, 1, 0, 1), About(1, 0, 0, -0.5F))}) {
    const PoseMatrix matrix = ToPoseMatrix(q, {});
    ExpectNear(RotationByTrace(matrix), q);
    ExpectNear(RotationByComponentRoots(matrix), q);
  }
}

TEST(Rotation, ByTraceHalfTurnsTakeTheBranchOfTheirAxis) {
  ExpectNear(RotationByTrace({1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0}), {1, 0, 0, 0});
  ExpectNear(RotationByTrace({-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0}), {0, 1, 0, 0});
  ExpectNear(RotationByTrace({-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0}), {0, -0.25F, 1, 0});
}

TEST(Rotation, ByComponentRootsAHalfTurnIsLost) {
  ExpectNear(RotationByComponentRoots({1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0}), {0, 0, 0, 0});
}

TEST(Rotation, RecenteringUndoesAPureTurnLeft) {
  const Quat left = About(0, 1, 0, kPi / 2);
  ExpectNear(Multiply(RecenterOffset(left), left), {0, 0, 0, 1});
}

TEST(Rotation, RecenteringTakesTheShortWayRound) {
  // The same rotation, written with a negative w.
  const Quat left = About(0, 1, 0, kPi / 2);
  ExpectNear(RecenterOffset({-left.x, -left.y, -left.z, -left.w}), RecenterOffset(left));
}

TEST(Rotation, RecenteringFromNothingIsNothing) {
  ExpectNear(RecenterOffset({0, 0, 0, 0}), {0, 0, 0, 1});
  ExpectNear(RecenterOffset({0, 0, 0, 1}), {0, 0, 0, 1});
}

TEST(Rotation, NormalisingZeroKeepsZero) { ExpectNear(Normalise({0, 0, 0, 0}), {0, 0, 0, 0}); }

}  // namespace
}  // namespace companion
