#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "floor/pose_floor.h"

namespace bench::floor {

// Publishing a head pose by a format whose formula alone costs more than all else: the formula, bare, and what
// PoseFloor does. Beside it one sees what a decoder adds to a formula that the protocol prescribes. For one thread.
class FormulaFloor {
 public:
  static constexpr std::size_t kBytes = 36;

  // Three angles in radians, and what is not looked at.
  void PublishEulerAngles(std::span<const std::byte, kBytes> bytes);
  // Gyroscope, accelerometer and magnetometer, three floats each, all of them in use: a step of Mahony's filter, nine
  // axes, in the single-precision form in which it is widely published.
  void PublishSensors(std::span<const std::byte, kBytes> bytes);
  // The offset that takes where the head looks, turned as PublishEulerAngles did last, to the front.
  void PublishRecenter();

  [[nodiscard]] const PoseFloor::Record& Published() const { return floor_.Published(); }

 private:
  PoseFloor floor_;
  std::array<float, 4> raw_{0, 0, 0, 1};       // x, y, z, w
  std::array<float, 4> attitude_{1, 0, 0, 0};  // the filter's: w, x, y, z
};

}  // namespace bench::floor
