#include "link/orientation_filter.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace ombrel {
namespace {

constexpr float kTwoKp = 1.0F;
constexpr float kTwoKi = 0.0F;
constexpr float kSampleRateHz = 76.0F;

// Fast inverse square root with one Newton step.
float InverseSqrt(float x) {
  const float half = 0.5F * x;
  const float guess = std::bit_cast<float>(0x5F3759DFU - (std::bit_cast<std::uint32_t>(x) >> 1));
  return guess * (1.5F - half * guess * guess);
}

bool IsZero(const Vector3& v) { return v.x == 0.0F && v.y == 0.0F && v.z == 0.0F; }

Vector3 FastNormalised(const Vector3& v) {
  const float scale = InverseSqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return {v.x * scale, v.y * scale, v.z * scale};
}

Vector3 Cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

}  // namespace

void OrientationFilter::Update(const SensorSample& sample) {
  const OrientationFilter before = *this;
  Vector3 rate = sample.gyroscope;
  if (!IsZero(sample.accelerometer)) ApplyFeedback(Feedback(sample), rate);
  Integrate(rate);
  if (!IsFinite(Quaternion{q1_, q2_, q3_, q0_})) *this = before;
}

// Half the sum of the cross products of what was measured and what the orientation so far would have measured.
Vector3 OrientationFilter::Feedback(const SensorSample& sample) const {
  const Vector3 measured = FastNormalised(sample.accelerometer);
  const Vector3 gravity{q1_ * q3_ - q0_ * q2_, q0_ * q1_ + q2_ * q3_, q0_ * q0_ - 0.5F + q3_ * q3_};
  const Vector3 error = Cross(measured, gravity);
  if (IsZero(sample.magnetometer)) return error;
  const Vector3 magnetic = MagneticFeedback(FastNormalised(sample.magnetometer));
  return {error.x + magnetic.x, error.y + magnetic.y, error.z + magnetic.z};
}

Vector3 OrientationFilter::MagneticFeedback(const Vector3& m) const {
  const float q0q1 = q0_ * q1_, q0q2 = q0_ * q2_, q0q3 = q0_ * q3_;
  const float q1q1 = q1_ * q1_, q1q2 = q1_ * q2_, q1q3 = q1_ * q3_;
  const float q2q2 = q2_ * q2_, q2q3 = q2_ * q3_, q3q3 = q3_ * q3_;

  // The earth's field as seen from the ground: horizontal bx and vertical bz.
  const float hx = 2.0F * (m.x * (0.5F - q2q2 - q3q3) + m.y * (q1q2 - q0q3) + m.z * (q1q3 + q0q2));
  const float hy = 2.0F * (m.x * (q1q2 + q0q3) + m.y * (0.5F - q1q1 - q3q3) + m.z * (q2q3 - q0q1));
  const float bx = std::sqrt(hx * hx + hy * hy);
  const float bz = 2.0F * (m.x * (q1q3 - q0q2) + m.y * (q2q3 + q0q1) + m.z * (0.5F - q1q1 - q2q2));

  const Vector3 field{bx * (0.5F - q2q2 - q3q3) + bz * (q1q3 - q0q2), bx * (q1q2 - q0q3) + bz * (q0q1 + q2q3),
                      bx * (q0q2 + q1q3) + bz * (0.5F - q1q1 - q2q2)};
  return Cross(m, field);
}

void OrientationFilter::ApplyFeedback(const Vector3& error, Vector3& rate) {
  if constexpr (kTwoKi > 0.0F) {
    integral_.x += kTwoKi * error.x * (1.0F / kSampleRateHz);
    integral_.y += kTwoKi * error.y * (1.0F / kSampleRateHz);
    integral_.z += kTwoKi * error.z * (1.0F / kSampleRateHz);
    rate = {rate.x + integral_.x, rate.y + integral_.y, rate.z + integral_.z};
  } else {
    integral_ = {};
  }
  rate = {rate.x + kTwoKp * error.x, rate.y + kTwoKp * error.y, rate.z + kTwoKp * error.z};
}

void OrientationFilter::Integrate(const Vector3& rate) {
  constexpr float kHalfStep = 0.5F * (1.0F / kSampleRateHz);
  const float gx = rate.x * kHalfStep, gy = rate.y * kHalfStep, gz = rate.z * kHalfStep;
  const float qa = q0_, qb = q1_, qc = q2_;
  q0_ += -qb * gx - qc * gy - q3_ * gz;
  q1_ += qa * gx + qc * gz - q3_ * gy;
  q2_ += qa * gy - qb * gz + q3_ * gx;
  q3_ += qa * gz + qb * gy - qc * gx;

  const float scale = InverseSqrt(q0_ * q0_ + q1_ * q1_ + q2_ * q2_ + q3_ * q3_);
  q0_ *= scale;
  q1_ *= scale;
  q2_ *= scale;
  q3_ *= scale;
}

Quaternion OrientationFilter::Orientation() const { return FromMatrixByTrace(ToMatrix({q1_, q2_, q3_, q0_})); }

}  // namespace ombrel
