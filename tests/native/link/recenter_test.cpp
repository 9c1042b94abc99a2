#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "link/quaternion.h"
#include "support/near.h"
#include "support/reference_math.h"

namespace ombrel::test {
namespace {

// The rule in double precision: the rotation vector's y, turned back about the vertical axis.
Quat ExpectedOffset(const Quaternion& raw) {
  const Quat q = Unit(Widened(raw));
  const double length = std::sqrt(Dot(q.v, q.v));
  const double half = std::atan2(length, q.w) - (q.w < 0.0 ? std::acos(-1.0) : 0.0);
  return AboutAxis({0, 1, 0}, -q.v[1] / length * 2.0 * half);
}

TEST(RecenterOffset, TurnsAHeadThatFacesLeftBackToTheFront) {
  const Quaternion left{0, kRoot, 0, kRoot};
  ExpectNear(RecenterOffset(left), {0, -kRoot, 0, kRoot});
  ExpectNear(RecenterOffset(left) * left, {0, 0, 0, 1});
}

TEST(RecenterOffset, IsTheIdentityForAHeadThatFacesForward) { EXPECT_EQ(RecenterOffset({0, 0, 0, 1}), Quaternion{}); }

TEST(RecenterOffset, DoesNotAnswerPitchOrRollAlone) {
  ExpectNear(RecenterOffset({kRoot, 0, 0, kRoot}), {});
  ExpectNear(RecenterOffset({0, 0, -kRoot, kRoot}), {});
}

TEST(RecenterOffset, KeepsPitchAndRoll) {
  RandomTurns turns(21);
  for (int i = 0; i < 500; ++i) {
    const auto turn = turns.Next(2.0);
    const Quaternion raw = Narrowed(AboutAxis(turn.axis, turn.angle));
    const Quaternion offset = RecenterOffset(raw);
    ASSERT_EQ(offset.x, 0.0F);
    ASSERT_EQ(offset.z, 0.0F);
    // How far the face looks up and how far the head is tilted: the heights of what was -z and x.
    for (const Vec3& direction : {Vec3{0, 0, -1}, Vec3{1, 0, 0}}) {
      const double before = Rotate(Widened(raw), direction)[1];
      ASSERT_NEAR(Rotate(Widened(offset * raw), direction)[1], before, 2e-6);
    }
  }
}

TEST(RecenterOffset, AgreesWithDoublePrecisionOnRandomTurns) {
  RandomTurns turns(22);
  for (int i = 0; i < 2000; ++i) {
    const auto turn = turns.Next(6.2);
    const Quaternion raw = Narrowed(AboutAxis(turn.axis, turn.angle));
    ASSERT_LT(LargestDifference(RecenterOffset(raw), ExpectedOffset(raw)), 2e-6) << turn.angle;
  }
}

TEST(RecenterOffset, TakesATurnOfOverHalfTheOtherWay) {
  // 270 degrees to the left are 90 to the right: w is negative, and the angle -90 degrees.
  ExpectNear(RecenterOffset({0, kRoot, 0, -kRoot}), {0, kRoot, 0, kRoot});
}

TEST(RecenterOffset, IsTheSameForAQuaternionAndItsNegative) {
  const Quaternion raw{0.1F, 0.6F, -0.2F, 0.7F};
  ExpectNear(RecenterOffset({-raw.x, -raw.y, -raw.z, -raw.w}), RecenterOffset(raw));
}

TEST(RecenterOffset, DoesNotDependOnTheLength) {
  ExpectNear(RecenterOffset({1, 6, -2, 7}), RecenterOffset({0.1F, 0.6F, -0.2F, 0.7F}));
}

TEST(RecenterOffset, IsTheIdentityForTheZeroQuaternionAndForMinusOne) {
  EXPECT_EQ(RecenterOffset({0, 0, 0, 0}), Quaternion{});
  EXPECT_EQ(RecenterOffset({0, 0, 0, -1}), Quaternion{});
}

TEST(RecenterOffset, AnswersAHalfTurn) { ExpectNear(RecenterOffset({0, 1, 0, 0}), {0, -1, 0, 0}); }

TEST(RecenterOffset, IsNotFiniteForWhatIsNot) { EXPECT_FALSE(IsFinite(RecenterOffset({0, kNan, 0, 1}))); }

}  // namespace
}  // namespace ombrel::test
