#include "link/quaternion.h"

#include <cmath>
#include <numbers>

namespace ombrel {
namespace {

// The trace method where the trace is not above -1: by the largest element of the diagonal.
Quaternion FromLargestDiagonal(const Matrix3x4& m) {
  if (m[0][0] > m[1][1] && m[0][0] > m[2][2]) {
    const float s = 2.0F * std::sqrt(1.0F + m[0][0] - m[1][1] - m[2][2]);
    return {s / 4.0F, (m[0][1] + m[1][0]) / s, (m[0][2] + m[2][0]) / s, (m[2][1] - m[1][2]) / s};
  }
  if (m[1][1] > m[2][2]) {
    const float s = 2.0F * std::sqrt(1.0F + m[1][1] - m[0][0] - m[2][2]);
    return {(m[0][1] + m[1][0]) / s, s / 4.0F, (m[1][2] + m[2][1]) / s, (m[0][2] - m[2][0]) / s};
  }
  const float s = 2.0F * std::sqrt(1.0F + m[2][2] - m[0][0] - m[1][1]);
  // m[1][1] where textbooks have m[1][2]: see compatibility.md, C1.
  return {(m[0][2] + m[2][0]) / s, (m[1][1] + m[2][1]) / s, s / 4.0F, (m[1][0] - m[0][1]) / s};
}

float HalfRoot(float v) { return std::sqrt(v > 0.0F ? v : 0.0F) * 0.5F; }

// Not std::copysign, which would give a difference of 0 a sign: see compatibility.md, C2.
float Sign(float v) { return (v > 0.0F ? 1.0F : 0.0F) - (v < 0.0F ? 1.0F : 0.0F); }

}  // namespace

Quaternion operator*(const Quaternion& p, const Quaternion& s) {
  return {
      .x = p.w * s.x + p.x * s.w + p.y * s.z - p.z * s.y,
      .y = p.w * s.y - p.x * s.z + p.y * s.w + p.z * s.x,
      .z = p.w * s.z + p.x * s.y - p.y * s.x + p.z * s.w,
      .w = p.w * s.w - p.x * s.x - p.y * s.y - p.z * s.z,
  };
}

Quaternion Normalised(const Quaternion& q) {
  const float length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
  if (length == 0.0F) return q;
  return {q.x / length, q.y / length, q.z / length, q.w / length};
}

bool IsFinite(const Quaternion& q) {
  return std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z) && std::isfinite(q.w);
}

Matrix3x4 ToMatrix(const Quaternion& q) {
  const float xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z;
  const float xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
  const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
  return {{{1.0F - 2.0F * (yy + zz), 2.0F * (xy - wz), 2.0F * (xz + wy), 0.0F},
           {2.0F * (xy + wz), 1.0F - 2.0F * (xx + zz), 2.0F * (yz - wx), 0.0F},
           {2.0F * (xz - wy), 2.0F * (yz + wx), 1.0F - 2.0F * (xx + yy), 0.0F}}};
}

Quaternion EulerToQuaternion(float aboutX, float aboutY, float aboutZ) {
  const double ca = std::cos(aboutX * 0.5F), sa = std::sin(aboutX * 0.5F);
  const double cb = std::cos(aboutY * 0.5F), sb = std::sin(aboutY * 0.5F);
  const double cc = std::cos(aboutZ * 0.5F), sc = std::sin(aboutZ * 0.5F);
  return {
      .x = static_cast<float>(cc * cb * sa + sc * sb * ca),
      .y = static_cast<float>(cc * sb * ca + sc * cb * sa),
      .z = static_cast<float>(sc * cb * ca - cc * sb * sa),
      .w = static_cast<float>(cc * cb * ca - sc * sb * sa),
  };
}

Quaternion FromMatrixByTrace(const Matrix3x4& m) {
  const float trace = m[0][0] + m[1][1] + m[2][2];
  // Not turned round into <=, which would let a trace that is not a number pass.
  if (!(static_cast<double>(trace) + 1.0 > 1e-8)) return FromLargestDiagonal(m);
  const float s = 2.0F * std::sqrt(trace + 1.0F);
  return {(m[2][1] - m[1][2]) / s, (m[0][2] - m[2][0]) / s, (m[1][0] - m[0][1]) / s, s / 4.0F};
}

Quaternion FromMatrixBySquareRoots(const Matrix3x4& m) {
  return {
      .x = HalfRoot(1.0F + m[0][0] - m[1][1] - m[2][2]) * Sign(m[2][1] - m[1][2]),
      .y = HalfRoot(1.0F - m[0][0] + m[1][1] - m[2][2]) * Sign(m[0][2] - m[2][0]),
      .z = HalfRoot(1.0F - m[0][0] - m[1][1] + m[2][2]) * Sign(m[1][0] - m[0][1]),
      .w = HalfRoot(1.0F + m[0][0] + m[1][1] + m[2][2]),
  };
}

Quaternion RecenterOffset(const Quaternion& raw) {
  const Quaternion q = Normalised(raw);
  const float length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z);
  if (length == 0.0F) return {};
  const float half = std::atan2(length, q.w);
  const float angle = 2.0F * (q.w < 0.0F ? half - std::numbers::pi_v<float> : half);
  const float aboutY = q.y * (angle / length);
  return EulerToQuaternion(0.0F, -aboutY, 0.0F);
}

}  // namespace ombrel
