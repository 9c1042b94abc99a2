#include "link/orientation_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "support/near.h"
#include "support/reference_filter.h"

namespace ombrel::test {
namespace {

Vec3 Widen(const Vector3& v) { return {v.x, v.y, v.z}; }

// A head that turns slowly, with gravity and a field that lean, and noise on both.
SensorSample NextSample(RandomTurns& random, bool withField) {
  const auto noisy = [&](double value, double noise) {
    return static_cast<float>(value + random.Uniform(-noise, noise));
  };
  SensorSample sample;
  sample.gyroscope = {noisy(0.4, 1.0), noisy(-0.3, 1.0), noisy(0.2, 1.0)};
  sample.accelerometer = {noisy(0.5, 1.0), noisy(-1.0, 1.0), noisy(9.7, 1.0)};
  if (withField) sample.magnetometer = {noisy(19.0, 3.0), noisy(4.0, 3.0), noisy(-41.0, 3.0)};
  return sample;
}

// The largest difference from the reference over that many samples.
double Drift(ReferenceFilter::Roots roots, bool withField, int samples) {
  RandomTurns random(31);
  OrientationFilter filter;
  ReferenceFilter reference(roots);
  double largest = 0.0;
  for (int i = 0; i < samples; ++i) {
    const SensorSample sample = NextSample(random, withField);
    filter.Update(sample);
    reference.Update(Widen(sample.gyroscope), Widen(sample.accelerometer), Widen(sample.magnetometer));
    largest = std::max(largest, LargestDifference(filter.Orientation(), Unit(reference.Orientation())));
  }
  return largest;
}

TEST(OrientationFilter, FacesForwardAtFirst) { EXPECT_EQ(OrientationFilter().Orientation(), Quaternion{}); }

TEST(OrientationFilter, FollowsTheReferenceWithSixAxes) {
  EXPECT_LT(Drift(ReferenceFilter::Roots::kFast, false, 500), 2e-5);
}

TEST(OrientationFilter, FollowsTheReferenceWithNineAxes) {
  EXPECT_LT(Drift(ReferenceFilter::Roots::kFast, true, 500), 2e-5);
}

// The fast inverse square root is off by up to 0.18 %, which is what is left against exact mathematics.
TEST(OrientationFilter, StaysNearExactMathematics) {
  EXPECT_LT(Drift(ReferenceFilter::Roots::kExact, false, 500), 0.01);
  EXPECT_LT(Drift(ReferenceFilter::Roots::kExact, true, 500), 0.01);
}

struct Step {
  SensorSample sample;
  Quaternion orientation;
};

// Nine axes, six, no accelerometer, gyroscope alone, in large turns. Computed once, with a program of its own in single
// precision. Near enough to tell the inverse root's constant from others that are in use, which are off by 1e-6 and more.
constexpr std::array<Step, 8> kGolden{{
    {{{10.0F, -25.0F, 40.0F}, {0.0F, 0.0F, 9.75F}, {20.0F, 0.0F, -40.0F}},
     {0.0627097934F, -0.156774461F, 0.250839174F, 0.953188837F}},
    {{{10.0F, -25.0F, 40.0F}, {0.5F, -0.25F, 9.5F}, {19.0F, 3.0F, -41.0F}},
     {0.118030235F, -0.29833436F, 0.477705002F, 0.817840695F}},
    {{{-3.0F, 0.75F, 25.0F}, {1.0F, 1.0F, 9.0F}, {18.0F, 5.0F, -40.0F}},
     {0.0475267097F, -0.317482948F, 0.59763962F, 0.734692216F}},
    {{{-3.0F, 0.75F, 15.0F}, {1.0F, 2.0F, 8.5F}, {0.0F, 0.0F, 0.0F}},
     {-0.000748335558F, -0.326744676F, 0.66100353F, 0.67550844F}},
    {{{14.0F, -8.0F, -4.0F}, {0.0F, 0.0F, 0.0F}, {17.0F, 8.0F, -38.0F}},
     {0.10423699F, -0.299651027F, 0.669375122F, 0.671774447F}},
    {{{4.0F, -24.0F, -4.0F}, {0.0F, 0.0F, 0.0F}, {0.0F, 0.0F, 0.0F}},
     {0.232452855F, -0.380389869F, 0.63482511F, 0.631083369F}},
    {{{0.0F, 0.0F, 10.0F}, {-2.0F, 3.0F, 8.0F}, {15.0F, 10.0F, -36.0F}},
     {0.203944638F, -0.392922282F, 0.674327254F, 0.591017306F}},
    {{{0.125F, -6.0F, 12.0F}, {-3.0F, 3.0F, 7.5F}, {12.0F, 14.0F, -35.0F}},
     {0.195744798F, -0.428097576F, 0.710763812F, 0.522715271F}},
}};

TEST(OrientationFilter, GivesTheGoldenSequence) {
  OrientationFilter filter;
  for (std::size_t i = 0; i < kGolden.size(); ++i) {
    filter.Update(kGolden[i].sample);
    EXPECT_LT(LargestDifference(filter.Orientation(), Widened(kGolden[i].orientation)), 4e-7) << "step " << i;
  }
}

TEST(OrientationFilter, TurnsByTheGyroscopeAlone) {
  OrientationFilter filter;
  for (int i = 0; i < 76; ++i) filter.Update({.gyroscope = {0, 1, 0}, .accelerometer = {}, .magnetometer = {}});
  // A radian a second, for a second.
  EXPECT_LT(AngleBetween(Widened(filter.Orientation()), AboutAxis({0, 1, 0}, 1.0)), 0.005);
}

// Through the half-turn, where a matrix of a quaternion that is not of unit length would be far off.
TEST(OrientationFilter, TurnsRoundByTheGyroscopeAlone) {
  constexpr double kHalfADegree = 0.5 * 3.14159265358979 / 180.0;
  constexpr int kWholeTurn = 480;
  OrientationFilter filter;
  ReferenceFilter reference(ReferenceFilter::Roots::kFast);
  for (int i = 0; i < kWholeTurn; ++i) {
    filter.Update({.gyroscope = {0, 1, 0}, .accelerometer = {}, .magnetometer = {}});
    reference.Update({0, 1, 0}, {}, {});
    ASSERT_LT(AngleBetween(Widened(filter.Orientation()), Unit(reference.Orientation())), kHalfADegree) << "step " << i;
  }
}

TEST(OrientationFilter, TheMagnetometerCountsForNothingWithoutTheAccelerometer) {
  OrientationFilter with, without;
  with.Update({.gyroscope = {1, 2, 3}, .accelerometer = {}, .magnetometer = {5, 6, 7}});
  without.Update({.gyroscope = {1, 2, 3}, .accelerometer = {}, .magnetometer = {}});
  EXPECT_EQ(with.Orientation(), without.Orientation());
}

TEST(OrientationFilter, OneMagnetometerAxisIsEnoughForNineAxes) {
  OrientationFilter six, nine;
  six.Update({.gyroscope = {}, .accelerometer = {0, 0, 1}, .magnetometer = {}});
  nine.Update({.gyroscope = {}, .accelerometer = {0, 0, 1}, .magnetometer = {0, 5, 0}});
  EXPECT_FALSE(six.Orientation() == nine.Orientation());
}

TEST(OrientationFilter, SettlesOnGravity) {
  OrientationFilter filter;
  const SensorSample tilted{.gyroscope = {}, .accelerometer = {0, 1, 1}, .magnetometer = {}};
  for (int i = 0; i < 3000; ++i) filter.Update(tilted);
  const Vec3 up = Rotate(Unit(Widened(filter.Orientation())), {0, std::sqrt(0.5), std::sqrt(0.5)});
  EXPECT_NEAR(up[2], 1.0, 1e-4);
}

TEST(OrientationFilter, SurvivesSamplesThatAreNotNumbers) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  OrientationFilter filter, clean;
  const SensorSample good{.gyroscope = {0.5F, 0, 0}, .accelerometer = {0, 1, 9}, .magnetometer = {20, 1, -40}};
  filter.Update(good);
  clean.Update(good);
  for (const float bad : {kNan, kInf, -kInf}) {
    filter.Update({.gyroscope = {bad, 0, 0}, .accelerometer = {0, 0, 9}, .magnetometer = {20, 0, -40}});
    filter.Update({.gyroscope = {0, 0, 0}, .accelerometer = {0, bad, 9}, .magnetometer = {20, 0, -40}});
    filter.Update({.gyroscope = {0, 0, 0}, .accelerometer = {0, 0, 9}, .magnetometer = {20, 0, bad}});
  }
  EXPECT_EQ(filter.Orientation(), clean.Orientation());
  filter.Update(good);
  clean.Update(good);
  EXPECT_EQ(filter.Orientation(), clean.Orientation());
}

TEST(OrientationFilter, StaysUsableAfterAbsurdNumbers) {
  for (const float absurd : {1e38F, -1e30F, 1e19F, 1e-38F, 1e-45F}) {
    OrientationFilter filter;
    filter.Update({{absurd, absurd, 0}, {absurd, 0, absurd}, {0, absurd, absurd}});
    filter.Update({{absurd, 0, 0}, {}, {}});
    for (int i = 0; i < 3000; ++i) filter.Update({{}, {0, 0, 9.75F}, {}});
    const Quat settled = Widened(filter.Orientation());
    EXPECT_NEAR(settled.w * settled.w + Dot(settled.v, settled.v), 1.0, 0.01) << absurd;
    EXPECT_NEAR(std::abs(Rotate(Unit(settled), {0, 0, 1})[2]), 1.0, 0.001) << absurd;
  }
}

}  // namespace
}  // namespace ombrel::test
