#pragma once

#include "support/reference_math.h"

namespace ombrel::test {

// Mahony's complementary filter in vectors and double precision: proportional gain 0.5, no integral term, 76 samples a
// second. The measured directions are compared with those that the orientation so far (earth from body) expects.
class ReferenceFilter {
 public:
  enum class Roots {
    kExact,
    kFast,  // 1/sqrt as the published form approximates it, in single precision
  };
  explicit ReferenceFilter(Roots roots) : roots_(roots) {}

  void Update(const Vec3& gyroscope, const Vec3& accelerometer, const Vec3& magnetometer);
  [[nodiscard]] const Quat& Orientation() const { return q_; }

 private:
  [[nodiscard]] double InverseRoot(double x) const;
  [[nodiscard]] Vec3 Direction(const Vec3& a) const;

  const Roots roots_;
  Quat q_;
};

}  // namespace ombrel::test
