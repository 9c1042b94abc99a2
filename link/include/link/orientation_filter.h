#pragma once

#include "link/quaternion.h"

namespace ombrel {

// One reading of the phone's sensors.
struct SensorSample {
  Vector3 gyroscope;      // radians per second
  Vector3 accelerometer;  // any unit: only its direction counts; all 0 when there is none
  Vector3 magnetometer;   // likewise
};

// Mahony's complementary filter (R. Mahony, T. Hamel, J.-M. Pflimlin, "Nonlinear Complementary Filters on the Special
// Orthogonal Group", 2008) in the single-precision form in which it is widely published, with the fast inverse square
// root. Twice the proportional gain is 1.0, the sample rate 76 Hz, and the integral gain 0: there are no integral terms.
class OrientationFilter {
 public:
  // Takes one sample in. A sample that would leave the filter without a finite orientation changes nothing.
  void Update(const SensorSample& sample);

  // The orientation so far: the filter's quaternion, brought to unit length, by way of its rotation matrix and the trace
  // method.
  [[nodiscard]] const Quaternion& Orientation() const { return orientation_; }

 private:
  Quaternion attitude_;
  Quaternion orientation_;
};

}  // namespace ombrel
