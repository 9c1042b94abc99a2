#include "link/quaternion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ombrel {
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
  // m[1][1], not m[1][2] as in the textbooks: companions rely on it.
  return {(m[0][2] + m[2][0]) / s, (m[1][1] + m[2][1]) / s, s / 4.0F, (m[1][0] - m[0][1]) / s};
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
