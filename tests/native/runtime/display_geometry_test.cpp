#include "runtime/display_geometry.h"

#include <array>

#include <gtest/gtest.h>

#include "runtime/frame_report.h"

namespace bench {
namespace {

std::array<float, 3> Project(const vr::HmdMatrix44_t& matrix, float x, float y, float z) {
  const float point[4] = {x, y, z, 1.0F};
  float clip[4] = {};
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      clip[row] += matrix.m[row][column] * point[column];
    }
  }
  return {clip[0] / clip[3], clip[1] / clip[3], clip[2] / clip[3]};
}

TEST(DisplayGeometry, ASquareFieldOfViewMapsItsEdgesToTheEdges) {
  const auto matrix = ProjectionMatrix({-1, 1, -1, 1}, 0.1F, 50.0F);
  const auto upperRight = Project(matrix, 2.0F, 2.0F, -2.0F);
  EXPECT_NEAR(upperRight[0], 1.0F, 1e-6F);
  EXPECT_NEAR(upperRight[1], 1.0F, 1e-6F);
}

TEST(DisplayGeometry, DepthRunsFromNearToFar) {
  const auto matrix = ProjectionMatrix({-1, 1, -1, 1}, 0.1F, 50.0F);
  EXPECT_NEAR(Project(matrix, 0, 0, -0.1F)[2], 0.0F, 1e-5F);
  EXPECT_NEAR(Project(matrix, 0, 0, -50.0F)[2], 1.0F, 1e-5F);
}

TEST(DisplayGeometry, UnequalSidesMoveTheCentre) {
  const auto matrix = ProjectionMatrix({-2, 1, -1, 1}, 0.1F, 50.0F);
  EXPECT_NEAR(Project(matrix, -2.0F, 0, -1.0F)[0], -1.0F, 1e-6F);
  EXPECT_NEAR(Project(matrix, 1.0F, 0, -1.0F)[0], 1.0F, 1e-6F);
}

TEST(DisplayGeometry, EyesStandHalfTheirDistanceApart) {
  EXPECT_FLOAT_EQ(HeadFromEye(vr::Eye_Left, 0.064F).m[0][3], -0.032F);
  EXPECT_FLOAT_EQ(HeadFromEye(vr::Eye_Right, 0.064F).m[0][3], 0.032F);
}

TEST(MissedIntervals, AreWholePeriodsBeyondTheFramesOwn) {
  EXPECT_EQ(MissedIntervals(100, 100), 0U);
  EXPECT_EQ(MissedIntervals(20, 100), 0U);
  EXPECT_EQ(MissedIntervals(140, 100), 0U);
  EXPECT_EQ(MissedIntervals(160, 100), 1U);
  EXPECT_EQ(MissedIntervals(500, 100), 4U);
}

}  // namespace
}  // namespace bench
