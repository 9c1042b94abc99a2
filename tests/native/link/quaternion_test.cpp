#include "link/quaternion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "support/near.h"
#include "support/reference_math.h"

namespace ombrel::test {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;

Matrix3x4 Rows(float a, float b, float c, float d, float e, float f, float g, float h, float i) {
  return {{{a, b, c, 0}, {d, e, f, 0}, {g, h, i, 0}}};
}

TEST(Quaternion, IsTheIdentityUnlessSaidOtherwise) { EXPECT_EQ(Quaternion{}, (Quaternion{0, 0, 0, 1})); }

TEST(Quaternion, DiffersInAnyComponent) {
  const Quaternion rotation{1, 2, 3, 4};
  EXPECT_EQ(rotation, (Quaternion{1, 2, 3, 4}));
  for (const Quaternion& other : {Quaternion{0, 2, 3, 4}, {1, 0, 3, 4}, {1, 2, 0, 4}, {1, 2, 3, 0}}) {
    EXPECT_NE(rotation, other);
  }
}

TEST(HamiltonProduct, FollowsTheRulesOfTheUnits) {
  const Quaternion i{1, 0, 0, 0}, j{0, 1, 0, 0}, k{0, 0, 1, 0};
  const Quaternion minusOne{0, 0, 0, -1};
  EXPECT_EQ(i * j, k);
  EXPECT_EQ(j * k, i);
  EXPECT_EQ(k * i, j);
  EXPECT_EQ(i * i, minusOne);
  EXPECT_EQ(j * j, minusOne);
  EXPECT_EQ(k * k, minusOne);
  EXPECT_EQ(j * i, (Quaternion{0, 0, -1, 0}));
}

TEST(HamiltonProduct, OfWholeNumbersIsExact) {
  // (4 + i + 2j + 3k)(8 + 5i + 6j + 7k), worked out by hand.
  EXPECT_EQ((Quaternion{1, 2, 3, 4} * Quaternion{5, 6, 7, 8}), (Quaternion{24, 48, 48, -6}));
}

TEST(HamiltonProduct, AgreesWithDoublePrecisionOnRandomTurns) {
  RandomTurns turns(11);
  for (int i = 0; i < 2000; ++i) {
    const auto a = turns.Next(10.0), b = turns.Next(10.0);
    const Quaternion p = Narrowed(AboutAxis(a.axis, a.angle)), s = Narrowed(AboutAxis(b.axis, b.angle));
    ASSERT_LT(LargestDifference(p * s, Product(Widened(p), Widened(s))), 3e-7);
  }
}

TEST(HamiltonProduct, TurnsByTheRightFactorFirst) {
  RandomTurns turns(12);
  for (int i = 0; i < 200; ++i) {
    const auto a = turns.Next(3.0), b = turns.Next(3.0);
    const Quaternion product = Narrowed(AboutAxis(a.axis, a.angle)) * Narrowed(AboutAxis(b.axis, b.angle));
    const Vec3 point{0.3, -0.7, 1.1};
    const Vec3 expected = Apply(Product(MatrixAboutAxis(a.axis, a.angle), MatrixAboutAxis(b.axis, b.angle)), point);
    const Vec3 turned = Rotate(Unit(Widened(product)), point);
    for (std::size_t axis = 0; axis < 3; ++axis) ASSERT_NEAR(turned[axis], expected[axis], 1e-6);
  }
}

TEST(Normalised, HasLengthOneAndKeepsTheDirection) {
  ExpectNear(Normalised({3, 0, 0, 4}), {0.6F, 0, 0, 0.8F});
  ExpectNear(Normalised({1, -1, 1, -1}), {0.5F, -0.5F, 0.5F, -0.5F});
}

TEST(Normalised, LeavesZeroAsItIs) { EXPECT_EQ(Normalised({0, 0, 0, 0}), (Quaternion{0, 0, 0, 0})); }

TEST(IsFinite, SeesEachComponent) {
  EXPECT_TRUE(IsFinite({1, 2, 3, 4}));
  EXPECT_FALSE(IsFinite({kNan, 0, 0, 1}));
  EXPECT_FALSE(IsFinite({0, kNan, 0, 1}));
  EXPECT_FALSE(IsFinite({0, 0, -INFINITY, 1}));
  EXPECT_FALSE(IsFinite({0, 0, 0, INFINITY}));
}

TEST(ToMatrix, AgreesWithRodriguesFormulaOnRandomTurns) {
  RandomTurns turns(13);
  for (int i = 0; i < 2000; ++i) {
    const auto turn = turns.Next(7.0);
    const Matrix3x4 matrix = ToMatrix(Narrowed(AboutAxis(turn.axis, turn.angle)));
    const Mat3 expected = MatrixAboutAxis(turn.axis, turn.angle);
    for (std::size_t r = 0; r < 3; ++r) {
      for (std::size_t c = 0; c < 3; ++c) ASSERT_NEAR(matrix[r][c], expected[r][c], 5e-7);
      ASSERT_EQ(matrix[r][3], 0.0F);
    }
  }
}

// The signs, worked out by hand from half angles of 45, 30 and 60 degrees.
TEST(EulerToQuaternion, TurnsAboutOneAxisAreTheUsualOnes) {
  ExpectNear(EulerToQuaternion(0, 0, 0), {0, 0, 0, 1});
  ExpectNear(EulerToQuaternion(kPi / 2, 0, 0), {kRoot, 0, 0, kRoot});
  ExpectNear(EulerToQuaternion(0, kPi / 2, 0), {0, kRoot, 0, kRoot});
  ExpectNear(EulerToQuaternion(0, 0, kPi / 2), {0, 0, kRoot, kRoot});
  ExpectNear(EulerToQuaternion(0, -kPi / 2, 0), {0, -kRoot, 0, kRoot});
}

TEST(EulerToQuaternion, HasItsOwnSignsWhenTwoAxesMix) {
  ExpectNear(EulerToQuaternion(kPi / 2, kPi / 2, 0), {0.5F, 0.5F, -0.5F, 0.5F});
  ExpectNear(EulerToQuaternion(kPi / 2, 0, kPi / 2), {0.5F, 0.5F, 0.5F, 0.5F});
  ExpectNear(EulerToQuaternion(0, kPi / 2, kPi / 2), {0.5F, 0.5F, 0.5F, 0.5F});
}

TEST(EulerToQuaternion, HasItsOwnSignsWhenThreeAxesMix) {
  ExpectNear(EulerToQuaternion(kPi / 2, kPi / 2, kPi / 2), {kRoot, kRoot, 0, 0});
  ExpectNear(EulerToQuaternion(kPi / 3, kPi / 2, 2 * kPi / 3), {kRoot, 0.61237244F, 0.35355339F, 0});
  ExpectNear(EulerToQuaternion(-kPi / 3, kPi / 2, 2 * kPi / 3), {0.35355339F, 0, kRoot, 0.61237244F});
}

// The turns about x, then y, then z, but for two signs, which a textbook has the other way round.
TEST(EulerToQuaternion, AgreesWithDoublePrecisionOnRandomAngles) {
  RandomTurns turns(14);
  for (int i = 0; i < 2000; ++i) {
    const double a = turns.Uniform(-7, 7), b = turns.Uniform(-7, 7), c = turns.Uniform(-7, 7);
    const Quat expected = Product(AboutAxis({0, 0, 1}, c), Product(AboutAxis({0, 1, 0}, b), AboutAxis({1, 0, 0}, a)));
    const Quat own{
        expected.w - 2 * std::sin(a / 2) * std::sin(b / 2) * std::sin(c / 2),
        {std::cos(c / 2) * std::cos(b / 2) * std::sin(a / 2) + std::sin(c / 2) * std::sin(b / 2) * std::cos(a / 2),
         expected.v[1], expected.v[2]}};
    ASSERT_LT(
        LargestDifference(EulerToQuaternion(static_cast<float>(a), static_cast<float>(b), static_cast<float>(c)), own),
        1e-6);
  }
}

TEST(TraceMethod, AgreesWithDoublePrecisionOnRandomTurns) {
  RandomTurns turns(15);
  for (int i = 0; i < 2000; ++i) {
    const auto turn = turns.Next(3.0);
    const Quaternion q = FromMatrixByTrace(Narrowed(MatrixAboutAxis(turn.axis, turn.angle)));
    ASSERT_LT(AngleBetween(Widened(q), AboutAxis(turn.axis, turn.angle)), 2e-5);
    ASSERT_GT(q.w, 0.0F);
  }
}

// Half-turns about axes whose matrices are exact in single precision: no trace is left to work with.
TEST(TraceMethod, WorksFromM00WhenThatIsTheLargest) {
  ExpectNear(FromMatrixByTrace(Rows(0, kRoot, kRoot, kRoot, -0.5F, 0.5F, kRoot, 0.5F, -0.5F)), {kRoot, 0.5F, 0.5F, 0});
}

TEST(TraceMethod, WorksFromM11WhenThatIsTheLargest) {
  ExpectNear(FromMatrixByTrace(Rows(-0.5F, kRoot, 0.5F, kRoot, 0, kRoot, 0.5F, kRoot, -0.5F)), {0.5F, kRoot, 0.5F, 0});
}

TEST(TraceMethod, WorksFromM11WhenM00IsAsLarge) {
  ExpectNear(FromMatrixByTrace(Rows(0, 1, 0, 1, 0, 0, 0, 0, -1)), {kRoot, kRoot, 0, 0});
}

// A textbook would have y = (m12 + m21) / s = 0.5; here it is (m11 + m21) / s = (-0.5 + 0.70710678) / 2.8284271.
TEST(TraceMethod, FormsYFromM11AndM21WhenM22IsTheLargest) {
  ExpectNear(FromMatrixByTrace(Rows(-0.5F, 0.5F, kRoot, 0.5F, -0.5F, kRoot, kRoot, kRoot, 0)),
             {0.5F, 0.073223305F, kRoot, 0});
}

TEST(TraceMethod, GivesAHalfTurnAboutZAYOfMinusAQuarter) {
  ExpectNear(FromMatrixByTrace(Rows(-1, 0, 0, 0, -1, 0, 0, 0, 1)), {0, -0.25F, 1, 0});
}

TEST(TraceMethod, SignsOfWComeFromTheDifferencesInEachBranch) {
  // Not rotations: numbers that show which elements are read. s is 4, 4 and 4.
  ExpectNear(FromMatrixByTrace(Rows(1, 2, 3, 4, -1, 5, 6, 7, -1)), {1, 1.5F, 2.25F, 0.5F});
  ExpectNear(FromMatrixByTrace(Rows(-1, 2, 3, 4, 1, 5, 6, 7, -1)), {1.5F, 1, 3, -0.75F});
  ExpectNear(FromMatrixByTrace(Rows(-1, 2, 3, 4, -1, 5, 6, 7, 1)), {2.25F, 1.5F, 1, 0.5F});
}

TEST(TraceMethod, UsesTheTraceAsSoonAsThereIsAny) {
  // The smallest step above -1: s is 2 * sqrt(2^-23).
  const float step = std::ldexp(1.0F, -23);
  ExpectNear(FromMatrixByTrace(Rows(-1, 0, 0, 0, -1, 0, 0, 0, 1 + step)), {0, 0, 0, 1.7263349e-4F}, 1e-10F);
}

TEST(TraceMethod, DoesNotReadTheFourthColumn) {
  Matrix3x4 matrix = Rows(1, 0, 0, 0, 1, 0, 0, 0, 1);
  for (auto& row : matrix) row[3] = kNan;
  EXPECT_EQ(FromMatrixByTrace(matrix), Quaternion{});
}

TEST(SquareRootMethod, AgreesWithDoublePrecisionOnRandomTurns) {
  RandomTurns turns(16);
  for (int i = 0; i < 2000; ++i) {
    const auto turn = turns.Next(3.0);
    const Quaternion q = FromMatrixBySquareRoots(Narrowed(MatrixAboutAxis(turn.axis, turn.angle)));
    // Small components come from roots of small differences: half the digits.
    ASSERT_LT(LargestDifference(q, AboutAxis(turn.axis, turn.angle)), 4e-4);
  }
}

// Catastrophic cancellation: the root of a difference of nearly equal numbers magnifies the matrix's rounding.
TEST(SquareRootMethod, IsLeastExactNearZero) {
  RandomTurns turns(18);
  double largest = 0.0;
  for (int i = 0; i < 2000; ++i) {
    const auto turn = turns.Next(3.0);
    const Vec3 nearlyUp = Unit(Vec3{1e-4 * turn.axis[0], turn.axis[1], 1e-4 * turn.axis[2]});
    const Quaternion q = FromMatrixBySquareRoots(Narrowed(MatrixAboutAxis(nearlyUp, turn.angle)));
    largest = std::max(largest, LargestDifference(q, AboutAxis(nearlyUp, turn.angle)));
  }
  EXPECT_GT(largest, 1e-4);
  EXPECT_LT(largest, 3e-4);
}

TEST(SquareRootMethod, TakesWhatIsNotANumberForNothing) {
  EXPECT_EQ(FromMatrixBySquareRoots(Rows(kNan, -1, 0, 1, 0, 0, 0, 0, 1)), (Quaternion{0, 0, 0, 0}));
  ExpectNear(FromMatrixBySquareRoots(Rows(0, -1, 0, kNan, 0, 0, 0, 0, 1)), {0, 0, 0, kRoot});
}

TEST(SquareRootMethod, IsExactForQuarterTurns) {
  ExpectNear(FromMatrixBySquareRoots(Rows(1, 0, 0, 0, 0, -1, 0, 1, 0)), {kRoot, 0, 0, kRoot});
  ExpectNear(FromMatrixBySquareRoots(Rows(0, 0, 1, 0, 1, 0, -1, 0, 0)), {0, kRoot, 0, kRoot});
  ExpectNear(FromMatrixBySquareRoots(Rows(0, -1, 0, 1, 0, 0, 0, 0, 1)), {0, 0, kRoot, kRoot});
}

TEST(SquareRootMethod, TakesItsSignsFromTheDifferences) {
  ExpectNear(FromMatrixBySquareRoots(Rows(1, 0, 0, 0, 0, 1, 0, -1, 0)), {-kRoot, 0, 0, kRoot});
  ExpectNear(FromMatrixBySquareRoots(Rows(0, 0, -1, 0, 1, 0, 1, 0, 0)), {0, -kRoot, 0, kRoot});
  ExpectNear(FromMatrixBySquareRoots(Rows(0, 1, 0, -1, 0, 0, 0, 0, 1)), {0, 0, -kRoot, kRoot});
}

TEST(SquareRootMethod, GivesNothingForAHalfTurn) {
  const Quaternion zero{0, 0, 0, 0};
  EXPECT_EQ(FromMatrixBySquareRoots(Rows(1, 0, 0, 0, -1, 0, 0, 0, -1)), zero);
  EXPECT_EQ(FromMatrixBySquareRoots(Rows(-1, 0, 0, 0, 1, 0, 0, 0, -1)), zero);
  EXPECT_EQ(FromMatrixBySquareRoots(Rows(-1, 0, 0, 0, -1, 0, 0, 0, 1)), zero);
}

TEST(SquareRootMethod, TakesRootsOfNothingNegative) {
  // Not a rotation: 1 + m00 - m11 - m22 and two more are below 0.
  EXPECT_EQ(FromMatrixBySquareRoots(Rows(3, 1, 2, 3, 3, 4, 5, 6, 3)), (Quaternion{0, 0, 0, 1.5811388F}));
}

}  // namespace
}  // namespace ombrel::test
