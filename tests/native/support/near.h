#pragma once

#include <gtest/gtest.h>

#include <limits>

#include "link/quaternion.h"

namespace ombrel::test {

inline constexpr float kRoot = 0.70710678F;  // of a half
inline constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Number for number: a quaternion and its negative are told apart.
inline void ExpectNear(const Quaternion& actual, const Quaternion& expected, float tolerance = 3e-7F) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
  EXPECT_NEAR(actual.z, expected.z, tolerance);
  EXPECT_NEAR(actual.w, expected.w, tolerance);
}

}  // namespace ombrel::test
