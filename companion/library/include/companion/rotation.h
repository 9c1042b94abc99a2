#pragma once

#include <array>

// Rotations, and the arithmetic of the protocol: metres, radians, x to the right, y up, z towards the viewer's back,
// so that -z is straight ahead. A positive turn about y is to the left, about x upwards.
namespace companion {

struct Quat {
  float x = 0;
  float y = 0;
  float z = 0;
  float w = 1;
};

struct Position {
  float x = 0;
  float y = 0;
  float z = 0;
};

// Three rows of four: rotation in columns 0 to 2, position in column 3.
using PoseMatrix = std::array<float, 12>;

struct YawPitch {
  float yaw = 0;    // radians, positive to the left
  float pitch = 0;  // radians, positive upwards
};

Quat Multiply(const Quat& left, const Quat& right);  // Hamilton product
Quat Conjugate(const Quat& q);
Quat Normalise(const Quat& q);  // zero stays zero

// Pitch, then roll, then yaw, about x, z and y: what pose format 3 does with its three angles.
Quat EulerToQuaternion(float aboutX, float aboutY, float aboutZ);
inline Quat YawPitchToQuaternion(const YawPitch& angles) { return EulerToQuaternion(angles.pitch, angles.yaw, 0); }

PoseMatrix IdentityPose();
PoseMatrix ToPoseMatrix(const Quat& rotation, const Position& position);

// The two ways in which the protocol reads a rotation back from a matrix.
Quat RotationByTrace(const PoseMatrix& matrix);           // pose formats 0 and unknown ones
Quat RotationByComponentRoots(const PoseMatrix& matrix);  // pose format 6 and controllers

Position PositionOf(const PoseMatrix& matrix);

// Where -z points after the rotation.
YawPitch LookDirection(const PoseMatrix& matrix);

// The rotation that a recentring applies on the left: undoes the turn about y alone.
Quat RecenterOffset(const Quat& rawOrientation);

}  // namespace companion
