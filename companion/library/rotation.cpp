#include "companion/rotation.h"

#include <algorithm>
#include <cmath>

namespace companion {
namespace {

constexpr double kPi = 3.14159265358979323846;

// A matrix element by row and column, in double precision.
double At(const PoseMatrix& matrix, std::size_t row, std::size_t column) {
  return static_cast<double>(matrix[row * 4 + column]);
}

Quat Narrow(double x, double y, double z, double w) {
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), static_cast<float>(w)};
}

double SignOf(double value) { return value > 0 ? 1.0 : value < 0 ? -1.0 : 0.0; }

}  // namespace

Quat Multiply(const Quat& p, const Quat& s) {
  return {p.x * s.w + p.w * s.x + p.y * s.z - p.z * s.y, p.y * s.w + p.w * s.y + p.z * s.x - p.x * s.z,
          p.z * s.w + p.w * s.z + p.x * s.y - p.y * s.x, p.w * s.w - p.x * s.x - p.y * s.y - p.z * s.z};
}

Quat Conjugate(const Quat& q) { return {-q.x, -q.y, -q.z, q.w}; }

Quat Normalise(const Quat& q) {
  const float length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
  if (length == 0) return q;
  return {q.x / length, q.y / length, q.z / length, q.w / length};
}

Quat EulerToQuaternion(float aboutX, float aboutY, float aboutZ) {
  const double ca = std::cos(aboutX / 2), sa = std::sin(aboutX / 2);
  const double cb = std::cos(aboutY / 2), sb = std::sin(aboutY / 2);
  const double cc = std::cos(aboutZ / 2), sc = std::sin(aboutZ / 2);
  return Narrow(cc * cb * sa + sc * sb * ca, cc * sb * ca + sc * cb * sa, sc * cb * ca - cc * sb * sa,
                cc * cb * ca - sc * sb * sa);
}

PoseMatrix IdentityPose() { return ToPoseMatrix(Quat{}, Position{}); }

PoseMatrix ToPoseMatrix(const Quat& q, const Position& position) {
  const float xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z;
  const float xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
  const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
  return {1 - 2 * (yy + zz), 2 * (xy - wz), 2 * (xz + wy), position.x,    2 * (xy + wz),     1 - 2 * (xx + zz),
          2 * (yz - wx),     position.y,    2 * (xz - wy), 2 * (yz + wx), 1 - 2 * (xx + yy), position.z};
}

Quat RotationByTrace(const PoseMatrix& m) {
  const double m00 = At(m, 0, 0), m11 = At(m, 1, 1), m22 = At(m, 2, 2);
  const double xPart = At(m, 2, 1) - At(m, 1, 2), yPart = At(m, 0, 2) - At(m, 2, 0), zPart = At(m, 1, 0) - At(m, 0, 1);
  if (m00 + m11 + m22 + 1 > 1e-8) {
    const double s = 2 * std::sqrt(m00 + m11 + m22 + 1);
    return Narrow(xPart / s, yPart / s, zPart / s, s / 4);
  }
  if (m00 > m11 && m00 > m22) {
    const double s = 2 * std::sqrt(1 + m00 - m11 - m22);
    return Narrow(s / 4, (At(m, 0, 1) + At(m, 1, 0)) / s, (At(m, 0, 2) + At(m, 2, 0)) / s, xPart / s);
  }
  if (m11 > m22) {
    const double s = 2 * std::sqrt(1 + m11 - m00 - m22);
    return Narrow((At(m, 0, 1) + At(m, 1, 0)) / s, s / 4, (At(m, 1, 2) + At(m, 2, 1)) / s, yPart / s);
  }
  // The protocol forms y from the diagonal element here; senders avoid exact half-turns about z.
  const double s = 2 * std::sqrt(1 + m22 - m00 - m11);
  return Narrow((At(m, 0, 2) + At(m, 2, 0)) / s, (m11 + At(m, 2, 1)) / s, s / 4, zPart / s);
}

Quat RotationByComponentRoots(const PoseMatrix& m) {
  const double m00 = At(m, 0, 0), m11 = At(m, 1, 1), m22 = At(m, 2, 2);
  const auto half = [](double squared) { return std::sqrt(std::max(0.0, squared)) / 2; };
  return Narrow(half(1 + m00 - m11 - m22) * SignOf(At(m, 2, 1) - At(m, 1, 2)),
                half(1 - m00 + m11 - m22) * SignOf(At(m, 0, 2) - At(m, 2, 0)),
                half(1 - m00 - m11 + m22) * SignOf(At(m, 1, 0) - At(m, 0, 1)), half(1 + m00 + m11 + m22));
}

Position PositionOf(const PoseMatrix& matrix) { return {matrix[3], matrix[7], matrix[11]}; }

YawPitch LookDirection(const PoseMatrix& matrix) {
  const float x = -matrix[2], y = -matrix[6], z = -matrix[10];
  return {std::atan2(-x, -z), std::asin(std::clamp(y, -1.0F, 1.0F))};
}

Quat RecenterOffset(const Quat& rawOrientation) {
  const Quat q = Normalise(rawOrientation);
  const double length =
      std::sqrt(static_cast<double>(q.x) * q.x + static_cast<double>(q.y) * q.y + static_cast<double>(q.z) * q.z);
  if (length == 0) return {};
  double angle = std::atan2(length, static_cast<double>(q.w));
  if (q.w < 0) angle -= kPi;
  const double aboutY = q.y * 2 * angle / length;
  return EulerToQuaternion(0, static_cast<float>(-aboutY), 0);
}

}  // namespace companion
