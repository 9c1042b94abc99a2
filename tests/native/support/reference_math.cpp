#include "support/reference_math.h"

#include <algorithm>
#include <cmath>

namespace ombrel::test {

double Dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec3 operator*(double s, const Vec3& a) { return {s * a[0], s * a[1], s * a[2]}; }
Vec3 operator+(const Vec3& a, const Vec3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vec3 Unit(const Vec3& a) { return 1.0 / std::sqrt(Dot(a, a)) * a; }

Quat AboutAxis(const Vec3& axis, double angle) { return {std::cos(angle / 2.0), std::sin(angle / 2.0) * axis}; }

Mat3 MatrixAboutAxis(const Vec3& axis, double angle) {
  Mat3 matrix;
  for (std::size_t column = 0; column < 3; ++column) {
    Vec3 unit{};
    unit[column] = 1.0;
    const Vec3 turned =
        std::cos(angle) * unit + std::sin(angle) * Cross(axis, unit) + (1.0 - std::cos(angle)) * Dot(axis, unit) * axis;
    for (std::size_t row = 0; row < 3; ++row) matrix[row][column] = turned[row];
  }
  return matrix;
}

Quat Product(const Quat& p, const Quat& s) {
  return {p.w * s.w - Dot(p.v, s.v), p.w * s.v + s.w * p.v + Cross(p.v, s.v)};
}

Quat Unit(const Quat& q) {
  const double length = std::sqrt(q.w * q.w + Dot(q.v, q.v));
  return {q.w / length, 1.0 / length * q.v};
}

Mat3 Product(const Mat3& a, const Mat3& b) {
  Mat3 product{};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) product[r][c] = Dot(a[r], {b[0][c], b[1][c], b[2][c]});
  }
  return product;
}

Vec3 Apply(const Mat3& m, const Vec3& a) { return {Dot(m[0], a), Dot(m[1], a), Dot(m[2], a)}; }

Vec3 ApplyTransposed(const Mat3& m, const Vec3& a) { return a[0] * m[0] + a[1] * m[1] + a[2] * m[2]; }

Vec3 Rotate(const Quat& q, const Vec3& a) { return Product(Product(q, {0.0, a}), {q.w, -1.0 * q.v}).v; }

Quat Widened(const Quaternion& q) { return {q.w, {q.x, q.y, q.z}}; }

Quaternion Narrowed(const Quat& q) {
  return {static_cast<float>(q.v[0]), static_cast<float>(q.v[1]), static_cast<float>(q.v[2]), static_cast<float>(q.w)};
}

Matrix3x4 Narrowed(const Mat3& m) {
  Matrix3x4 narrowed{};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) narrowed[r][c] = static_cast<float>(m[r][c]);
  }
  return narrowed;
}

double AngleBetween(const Quat& a, const Quat& b) {
  const Quat between = Product(Unit(a), {Unit(b).w, -1.0 * Unit(b).v});
  return 2.0 * std::atan2(std::sqrt(Dot(between.v, between.v)), std::abs(between.w));
}

double LargestDifference(const Quaternion& a, const Quat& b) {
  return std::max({std::abs(a.x - b.v[0]), std::abs(a.y - b.v[1]), std::abs(a.z - b.v[2]), std::abs(a.w - b.w)});
}

RandomTurns::Turn RandomTurns::Next(double largestAngle) {
  Vec3 axis;
  do {
    axis = {Uniform(-1.0, 1.0), Uniform(-1.0, 1.0), Uniform(-1.0, 1.0)};
  } while (Dot(axis, axis) < 1e-3 || Dot(axis, axis) > 1.0);
  return {Unit(axis), Uniform(-largestAngle, largestAngle)};
}

// Written out, since the library's distributions may differ from one implementation to the next.
double RandomTurns::Uniform(double least, double most) {
  return least + (most - least) * (static_cast<double>(engine_()) / 4294967295.0);
}

}  // namespace ombrel::test
