#pragma once

#include <array>

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

// Three rows of four floats, row-major; the rotation is in columns 0 to 2.
using Matrix3x4 = std::array<std::array<float, 4>, 3>;

// Hamilton product p ⊗ s.
[[nodiscard]] Quaternion operator*(const Quaternion& p, const Quaternion& s);

// Unit length; a quaternion of length 0 stays as it is.
[[nodiscard]] Quaternion Normalised(const Quaternion& q);

[[nodiscard]] bool IsFinite(const Quaternion& q);

// The rotation of a unit quaternion; the fourth column is 0.
[[nodiscard]] Matrix3x4 ToMatrix(const Quaternion& q);

// Quaternion of three angles in radians, about x, y and z. Products in double precision, each result narrowed. The signs
// belong to no textbook order of rotations (compatibility.md, C3).
[[nodiscard]] Quaternion EulerToQuaternion(float aboutX, float aboutY, float aboutZ);

// Quaternion of a rotation matrix by its trace (Shoemake 1985), but for one element of one branch (compatibility.md, C1).
[[nodiscard]] Quaternion FromMatrixByTrace(const Matrix3x4& m);

// Quaternion of a rotation matrix, each component from its own square root and the sign of its off-diagonal
// difference. No difference means a component of 0 (compatibility.md, C2).
[[nodiscard]] Quaternion FromMatrixBySquareRoots(const Matrix3x4& m);

// The turn about the vertical axis that takes what `raw` faces back to the front: only the y component of raw's
// rotation vector is kept, negated. Not finite when `raw` is not.
[[nodiscard]] Quaternion RecenterOffset(const Quaternion& raw);

}  // namespace ombrel
