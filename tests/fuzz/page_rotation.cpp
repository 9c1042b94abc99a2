#include "page_rotation.h"

#include <algorithm>
#include <cmath>

namespace ombrel::test {
namespace {

template <typename Numbers>
bool AreTame(const Numbers& numbers) {
  return std::ranges::all_of(numbers, [](float number) { return std::abs(number) <= 10.0F; });
}

// A unit quaternion, from one with a length that rounding does not reach.
std::optional<Quat> Direction(const Quat& q) {
  const double length = std::sqrt(q.w * q.w + Dot(q.v, q.v));
  if (!(length > 0.3 && length < 1e6)) return std::nullopt;
  return Unit(q);
}

// Whether single precision decides as double precision does.
bool IsClear(double difference) { return std::abs(difference) > 1e-2; }

double WithSignOf(double number, double difference) {
  return difference > 0.0 ? number : difference < 0.0 ? -number : 0.0;
}

double HalfRoot(double number) { return std::sqrt(std::max(0.0, number)) / 2.0; }

std::optional<Quat> OfLargestDiagonal(const Mat3& m) {
  const bool isClear = IsClear(m[0][0] - m[1][1]) && IsClear(m[0][0] - m[2][2]) && IsClear(m[1][1] - m[2][2]);
  const std::size_t i = m[0][0] > m[1][1] && m[0][0] > m[2][2] ? 0 : m[1][1] > m[2][2] ? 1 : 2;
  const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
  const double radicand = 1.0 + m[i][i] - m[j][j] - m[k][k];
  if (!isClear || radicand < 1e-2) return std::nullopt;
  const double s = 2.0 * std::sqrt(radicand);
  Quat q{.w = (m[k][j] - m[j][k]) / s, .v = {}};
  q.v[i] = s / 4.0;
  q.v[j] = (m[i][j] + m[j][i]) / s;
  q.v[k] = (m[i][k] + m[k][i]) / s;
  // The page's last line.
  if (i == 2) q.v[1] = (m[1][1] + m[2][1]) / s;
  return Direction(q);
}

Mat3 Turn(const PageMatrix& m) { return {{{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}}}; }

}  // namespace

std::optional<Quat> RotationOfMatrix(const PageMatrix& matrix) {
  if (!AreTame(std::array{matrix[0], matrix[1], matrix[2], matrix[4], matrix[5], matrix[6], matrix[8], matrix[9],
                          matrix[10]})) {
    return std::nullopt;
  }
  const Mat3 m = Turn(matrix);
  const double trace = m[0][0] + m[1][1] + m[2][2];
  if (!IsClear(trace + 1.0)) return std::nullopt;
  if (trace + 1.0 < 0.0) return OfLargestDiagonal(m);
  const double s = 2.0 * std::sqrt(trace + 1.0);
  return Direction({s / 4.0, {(m[2][1] - m[1][2]) / s, (m[0][2] - m[2][0]) / s, (m[1][0] - m[0][1]) / s}});
}

std::optional<Quat> RotationOfPoseMatrix(const PageMatrix& matrix) {
  if (!AreTame(std::array{matrix[0], matrix[1], matrix[2], matrix[4], matrix[5], matrix[6], matrix[8], matrix[9],
                          matrix[10]})) {
    return std::nullopt;
  }
  const Mat3 m = Turn(matrix);
  const double x = HalfRoot(1.0 + m[0][0] - m[1][1] - m[2][2]), y = HalfRoot(1.0 - m[0][0] + m[1][1] - m[2][2]);
  const double z = HalfRoot(1.0 - m[0][0] - m[1][1] + m[2][2]), w = HalfRoot(1.0 + m[0][0] + m[1][1] + m[2][2]);
  return Direction(
      {w, {WithSignOf(x, m[2][1] - m[1][2]), WithSignOf(y, m[0][2] - m[2][0]), WithSignOf(z, m[1][0] - m[0][1])}});
}

std::optional<Quat> RotationOfAngles(const std::array<float, 3>& angles) {
  if (!AreTame(angles)) return std::nullopt;
  const double ca = std::cos(angles[0] / 2.0), sa = std::sin(angles[0] / 2.0);
  const double cb = std::cos(angles[1] / 2.0), sb = std::sin(angles[1] / 2.0);
  const double cc = std::cos(angles[2] / 2.0), sc = std::sin(angles[2] / 2.0);
  return Direction({cc * cb * ca - sc * sb * sa,
                    {cc * cb * sa + sc * sb * ca, cc * sb * ca + sc * cb * sa, sc * cb * ca - cc * sb * sa}});
}

std::optional<Quat> RotationOf(const std::array<float, 4>& xyzw) {
  return AreTame(xyzw) ? Direction({xyzw[3], {xyzw[0], xyzw[1], xyzw[2]}}) : std::nullopt;
}

std::optional<Quat> RecenteringAt(const Quat& orientation) {
  const Quat q = Unit(orientation);
  const double length = std::sqrt(Dot(q.v, q.v));
  // Just short of half a turn and just beyond are as far apart as can be.
  if (!IsClear(q.w)) return std::nullopt;
  if (length == 0.0) return Quat{};
  const double angle = 2.0 * std::atan2(length, std::abs(q.w));
  const double aboutY = std::copysign(1.0, q.w) * q.v[1] / length * angle;
  return AboutAxis({0.0, 1.0, 0.0}, -aboutY);
}

}  // namespace ombrel::test
