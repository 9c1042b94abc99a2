#pragma once

#include <openvr_driver.h>

#include <cstddef>

namespace bench::runtime {

// A rigid transform with rows of three, in the runtime's axes: x right, y up, -z forward, metres.
using PoseMatrix = vr::HmdMatrix34_t;

[[nodiscard]] PoseMatrix IdentityPose();
[[nodiscard]] PoseMatrix PoseFromQuaternion(const vr::HmdQuaternion_t& rotation, const double (&translation)[3]);
// First `right`, then `left`.
[[nodiscard]] PoseMatrix Multiply(const PoseMatrix& left, const PoseMatrix& right);
// The same for any matrix on the left; the last row of `right` counts as 0, 0, 0, 1.
template <std::size_t kRows>
void MultiplyRows(const float (&left)[kRows][4], const PoseMatrix& right, float (&product)[kRows][4]) {
  for (std::size_t row = 0; row < kRows; ++row) {
    for (int column = 0; column < 4; ++column) {
      product[row][column] = column == 3 ? left[row][3] : 0.0F;
      for (int inner = 0; inner < 3; ++inner) {
        product[row][column] += left[row][inner] * right.m[inner][column];
      }
    }
  }
}
// For transforms without scale.
[[nodiscard]] PoseMatrix InvertRigid(const PoseMatrix& pose);
// Where the device's head stands in the world: world-from-driver, the pose, driver-from-head.
// Time offset and velocities are not looked at: this runtime predicts nothing.
[[nodiscard]] PoseMatrix WorldFromHead(const vr::DriverPose_t& pose);

}  // namespace bench::runtime
