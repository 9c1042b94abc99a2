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
