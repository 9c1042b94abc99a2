#pragma once

#include <openvr_driver.h>

namespace bench::runtime {

// A rigid transform with rows of three, in the runtime's axes: x right, y up, -z forward, metres.
using PoseMatrix = vr::HmdMatrix34_t;

[[nodiscard]] PoseMatrix IdentityPose();
[[nodiscard]] PoseMatrix PoseFromQuaternion(const vr::HmdQuaternion_t& rotation, const double (&translation)[3]);
// First `right`, then `left`.
[[nodiscard]] PoseMatrix Multiply(const PoseMatrix& left, const PoseMatrix& right);
// For transforms without scale.
[[nodiscard]] PoseMatrix InvertRigid(const PoseMatrix& pose);
// Where the device's head stands in the world: world-from-driver, the pose, driver-from-head.
// Time offset and velocities are not looked at: this runtime predicts nothing.
[[nodiscard]] PoseMatrix WorldFromHead(const vr::DriverPose_t& pose);

}  // namespace bench::runtime
