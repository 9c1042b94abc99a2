#pragma once

#include <array>
#include <cstdint>

#include <openvr_driver.h>

#include "runtime/pose_matrix.h"

namespace bench {

// Tangents of the angles from the straight view, as the driver interface has them. Their signs are those
// of a picture with y downwards: `top` is the smaller of the two.
struct ProjectionTangents {
  float left = -1.0F;
  float right = 1.0F;
  float top = -1.0F;
  float bottom = 1.0F;
};

struct EyeGeometry {
  ProjectionTangents projection;
  std::uint32_t x = 0;  // where the eye's picture lies in the window, in pixels
  std::uint32_t y = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

// What a headset's display component says of itself.
struct DisplayGeometry {
  std::int32_t windowX = 0;
  std::int32_t windowY = 0;
  std::uint32_t windowWidth = 0;
  std::uint32_t windowHeight = 0;
  std::uint32_t renderWidth = 0;  // recommended size of one eye's picture
  std::uint32_t renderHeight = 0;
  std::array<EyeGeometry, 2> eyes{};  // left, right
};

[[nodiscard]] DisplayGeometry ReadDisplayGeometry(vr::IVRDisplayComponent& display);

// The usual right-handed projection with depth 0 at `nearMeters` and 1 at `farMeters`, for column vectors.
[[nodiscard]] vr::HmdMatrix44_t ProjectionMatrix(const ProjectionTangents& tangents, float nearMeters, float farMeters);

// Where an eye stands in the head: half the distance of the pupils to its side.
[[nodiscard]] runtime::PoseMatrix HeadFromEye(vr::EVREye eye, float ipdMeters);

}  // namespace bench
