#pragma once

#include <cmath>
#include <span>

#include "link/matrix.h"

namespace ombrel {

// Rotations in single precision, in the order in which they travel: x, y, z, w.
struct Quaternion {
  float x = 0.0F, y = 0.0F, z = 0.0F, w = 1.0F;

  bool operator==(const Quaternion&) const = default;
};

struct Vector3 {
  float x = 0.0F, y = 0.0F, z = 0.0F;

  bool operator==(const Vector3&) const = default;
};

// Hamilton product p ⊗ s.
[[nodiscard]] inline Quaternion operator*(const Quaternion& p, const Quaternion& s) {
  return {
      .x = p.w * s.x + p.x * s.w + p.y * s.z - p.z * s.y,
      .y = p.w * s.y - p.x * s.z + p.y * s.w + p.z * s.x,
      .z = p.w * s.z + p.x * s.y - p.y * s.x + p.z * s.w,
      .w = p.w * s.w - p.x * s.x - p.y * s.y - p.z * s.z,
  };
}

// Unit length; a quaternion of length 0 stays as it is.
[[nodiscard]] inline Quaternion Normalised(const Quaternion& q) {
  const float length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
  if (length == 0.0F) return q;
  return {q.x / length, q.y / length, q.z / length, q.w / length};
}

[[nodiscard]] inline bool IsFinite(const Quaternion& q) {
  return std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z) && std::isfinite(q.w);
}

// The rotation of a unit quaternion; the fourth column is 0.
[[nodiscard]] inline Matrix3x4 ToMatrix(const Quaternion& q) {
  const float xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z;
  const float xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
  const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
  return {{{1.0F - 2.0F * (yy + zz), 2.0F * (xy - wz), 2.0F * (xz + wy), 0.0F},
           {2.0F * (xy + wz), 1.0F - 2.0F * (xx + zz), 2.0F * (yz - wx), 0.0F},
           {2.0F * (xz - wy), 2.0F * (yz + wx), 1.0F - 2.0F * (xx + yy), 0.0F}}};
}

// Quaternion of three angles in radians, about x, y and z. The signs are the companion protocol's own and belong to no
// textbook order of rotations. Products in double precision, each result narrowed.
[[nodiscard]] Quaternion EulerToQuaternion(float aboutX, float aboutY, float aboutZ);

// Quaternion of a rotation matrix by its trace (Shoemake 1985), but with m11 + m21 in y when m22 is the largest
// diagonal element and the trace is not above -1: the protocol has it so.
[[nodiscard]] Quaternion FromLargestDiagonal(const Matrix3x4& m);  // its cases for such a trace
[[nodiscard]] inline Quaternion FromMatrixByTrace(const MatrixBytes& m) {
  const float trace = m[0][0] + m[1][1] + m[2][2];
  // Not turned round into <=, which would let a trace that is not a number pass.
  if (!(static_cast<double>(trace) + 1.0 > 1e-8)) return FromLargestDiagonal(m.Copy());
  const float s = 2.0F * std::sqrt(trace + 1.0F);
  return {(m[2][1] - m[1][2]) / s, (m[0][2] - m[2][0]) / s, (m[1][0] - m[0][1]) / s, s / 4.0F};
}
[[nodiscard]] inline Quaternion FromMatrixByTrace(const Matrix3x4& m) {
  return FromMatrixByTrace(MatrixBytes(std::as_bytes(std::span(m))));
}

// Quaternion of a rotation matrix, each component from its own square root and the sign of its off-diagonal
// difference. No difference means a component of 0: a half-turn about an axis gives the zero quaternion.
[[nodiscard]] inline Quaternion FromMatrixBySquareRoots(const MatrixBytes& m) {
  const auto halfRoot = [](float v) { return std::sqrt(v > 0.0F ? v : 0.0F) * 0.5F; };
  const auto sign = [](float v) { return (v > 0.0F ? 1.0F : 0.0F) - (v < 0.0F ? 1.0F : 0.0F); };
  return {
      .x = halfRoot(1.0F + m[0][0] - m[1][1] - m[2][2]) * sign(m[2][1] - m[1][2]),
      .y = halfRoot(1.0F - m[0][0] + m[1][1] - m[2][2]) * sign(m[0][2] - m[2][0]),
      .z = halfRoot(1.0F - m[0][0] - m[1][1] + m[2][2]) * sign(m[1][0] - m[0][1]),
      .w = halfRoot(1.0F + m[0][0] + m[1][1] + m[2][2]),
  };
}
[[nodiscard]] inline Quaternion FromMatrixBySquareRoots(const Matrix3x4& m) {
  return FromMatrixBySquareRoots(MatrixBytes(std::as_bytes(std::span(m))));
}

// The turn about the vertical axis that takes what `raw` faces back to the front: only the y component of raw's
// rotation vector is kept, negated. Not finite when `raw` is not.
[[nodiscard]] Quaternion RecenterOffset(const Quaternion& raw);

}  // namespace ombrel
