#include "link/orientation_filter.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace ombrel {
namespace {

constexpr float kTwoKp = 1.0F;
constexpr float kSampleRateHz = 76.0F;  // compatibility.md, C6

// Fast inverse square root with one Newton step.
float InverseSqrt(float x) {
  const float half = 0.5F * x;
  const float guess = std::bit_cast<float>(0x5F3759DFU - (std::bit_cast<std::uint32_t>(x) >> 1));
  return guess * (1.5F - half * guess * guess);
}

bool IsZero(const Vector3& v) { return v.x == 0.0F && v.y == 0.0F && v.z == 0.0F; }

Vector3 Scaled(const Vector3& v, float scale) { return {v.x * scale, v.y * scale, v.z * scale}; }

Vector3 Sum(const Vector3& a, const Vector3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }

Vector3 FastNormalised(const Vector3& v) { return Scaled(v, InverseSqrt(v.x * v.x + v.y * v.y + v.z * v.z)); }

Vector3 Cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// How far the measured field is from the one that the orientation so far would have measured.
Vector3 MagneticFeedback(const Quaternion& q, const Vector3& m) {
  const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
  const float xx = q.x * q.x, xy = q.x * q.y, xz = q.x * q.z;
  const float yy = q.y * q.y, yz = q.y * q.z, zz = q.z * q.z;

  // The earth's field as seen from the ground: horizontal bx and vertical bz.
  const float hx = 2.0F * (m.x * (0.5F - yy - zz) + m.y * (xy - wz) + m.z * (xz + wy));
  const float hy = 2.0F * (m.x * (xy + wz) + m.y * (0.5F - xx - zz) + m.z * (yz - wx));
  const float bx = std::sqrt(hx * hx + hy * hy);
  const float bz = 2.0F * (m.x * (xz - wy) + m.y * (yz + wx) + m.z * (0.5F - xx - yy));

  return Cross(m, {bx * (0.5F - yy - zz) + bz * (xz - wy), bx * (xy - wz) + bz * (wx + yz),
                   bx * (wy + xz) + bz * (0.5F - xx - yy)});
}

// Half the sum of the cross products of what was measured and what the orientation so far would have measured.
Vector3 Feedback(const Quaternion& q, const SensorSample& sample) {
  const Vector3 gravity{q.x * q.z - q.w * q.y, q.w * q.x + q.y * q.z, q.w * q.w - 0.5F + q.z * q.z};
  const Vector3 error = Cross(FastNormalised(sample.accelerometer), gravity);
  if (IsZero(sample.magnetometer)) return error;
  return Sum(error, MagneticFeedback(q, FastNormalised(sample.magnetometer)));
}

Quaternion Integrated(const Quaternion& q, const Vector3& rate) {
  const Vector3 g = Scaled(rate, 0.5F * (1.0F / kSampleRateHz));
  const float w = q.w + (-q.x * g.x - q.y * g.y - q.z * g.z);
  const float x = q.x + (q.w * g.x + q.y * g.z - q.z * g.y);
  const float y = q.y + (q.w * g.y - q.x * g.z + q.z * g.x);
  const float z = q.z + (q.w * g.z + q.x * g.y - q.y * g.x);
  const float scale = InverseSqrt(w * w + x * x + y * y + z * z);
  return {x * scale, y * scale, z * scale, w * scale};
}

}  // namespace

void OrientationFilter::Update(const SensorSample& sample) {
  Vector3 rate = sample.gyroscope;
  if (!IsZero(sample.accelerometer)) rate = Sum(rate, Scaled(Feedback(attitude_, sample), kTwoKp));
  const Quaternion next = Integrated(attitude_, rate);
  if (!IsFinite(next)) return;
  attitude_ = next;
  // The fast inverse square root leaves it up to 0.2 % short, which the trace method near a half-turn would enlarge to
  // many degrees.
  orientation_ = FromMatrixByTrace(ToMatrix(Normalised(next)));
}

}  // namespace ombrel
