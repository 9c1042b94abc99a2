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
// Orthogonal Group", 2008) in the single-precision form in which it is widely published: fast inverse square root,
// quaternion w first. Twice the proportional gain is 1.0, the integral gain 0, the sample rate 76 Hz.
class OrientationFilter {
 public:
  // Takes one sample in. A sample that would leave the filter without a finite orientation changes nothing.
  void Update(const SensorSample& sample);

  // The orientation so far: the filter's quaternion, by way of its rotation matrix and the trace method.
  [[nodiscard]] Quaternion Orientation() const;

 private:
  Vector3 Feedback(const SensorSample& sample) const;
  Vector3 MagneticFeedback(const Vector3& magnetometer) const;
  void ApplyFeedback(const Vector3& error, Vector3& rate);
  void Integrate(const Vector3& rate);

  float q0_ = 1.0F, q1_ = 0.0F, q2_ = 0.0F, q3_ = 0.0F;  // w, x, y, z
  Vector3 integral_;
};

}  // namespace ombrel
