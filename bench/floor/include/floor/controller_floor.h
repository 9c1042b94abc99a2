#pragma once

#include <openvr_driver.h>

#include <array>
#include <cstddef>
#include <span>

namespace bench::floor {

inline constexpr std::size_t kControllerRecordBytes = 192;

// What taking a controller's record in cannot do without: the pose built from it, and one compare of its 64 bytes of
// buttons and axes with those before. For one thread.
class ControllerFloor {
 public:
  // True when buttons or axes differ from the record before.
  [[nodiscard]] bool Take(std::span<const std::byte, kControllerRecordBytes> record);
  [[nodiscard]] const vr::DriverPose_t& Pose() const { return pose_; }

 private:
  vr::DriverPose_t pose_{};
  std::array<std::byte, 64> state_{};
};

}  // namespace bench::floor
