#pragma once

#include <array>
#include <random>

#include "link/quaternion.h"

// Rotations in double precision, written from their definitions and not from the code that they judge.
namespace ombrel::test {

using Vec3 = std::array<double, 3>;
using Mat3 = std::array<Vec3, 3>;

struct Quat {
  double w = 1.0;
  Vec3 v{};
};

[[nodiscard]] double Dot(const Vec3& a, const Vec3& b);
[[nodiscard]] Vec3 Cross(const Vec3& a, const Vec3& b);
[[nodiscard]] Vec3 Unit(const Vec3& a);
[[nodiscard]] Vec3 operator*(double s, const Vec3& a);
[[nodiscard]] Vec3 operator+(const Vec3& a, const Vec3& b);

// Rotation about a unit axis: half angles for the quaternion, Rodrigues' formula for the matrix.
[[nodiscard]] Quat AboutAxis(const Vec3& axis, double angle);
[[nodiscard]] Mat3 MatrixAboutAxis(const Vec3& axis, double angle);

// (w, v)(w', v') = (w w' - v.v', w v' + w' v + v x v')
[[nodiscard]] Quat Product(const Quat& p, const Quat& s);
[[nodiscard]] Quat Unit(const Quat& q);
[[nodiscard]] Mat3 Product(const Mat3& a, const Mat3& b);
[[nodiscard]] Vec3 Apply(const Mat3& m, const Vec3& a);
[[nodiscard]] Vec3 ApplyTransposed(const Mat3& m, const Vec3& a);
// Vector part of q (0, a) q*, for a unit quaternion.
[[nodiscard]] Vec3 Rotate(const Quat& q, const Vec3& a);

[[nodiscard]] Quat Widened(const Quaternion& q);
[[nodiscard]] Quaternion Narrowed(const Quat& q);
[[nodiscard]] Matrix3x4 Narrowed(const Mat3& m);

// The angle of the turn between two unit quaternions; q and -q are the same turn.
[[nodiscard]] double AngleBetween(const Quat& a, const Quat& b);
// The largest difference of a component, as the numbers stand.
[[nodiscard]] double LargestDifference(const Quaternion& a, const Quat& b);

// The same turns in every run.
class RandomTurns {
 public:
  struct Turn {
    Vec3 axis;
    double angle;
  };
  explicit RandomTurns(unsigned seed) : engine_(seed) {}
  [[nodiscard]] Turn Next(double largestAngle);
  [[nodiscard]] double Uniform(double least, double most);

 private:
  std::mt19937 engine_;
};

}  // namespace ombrel::test
