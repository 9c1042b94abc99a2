#pragma once

#include <cstdint>

namespace ombrel {

// The headset's picture, in pixels: one eye's, and the whole window with both eyes side by side.
struct DisplayGeometry {
  std::int32_t windowX = -1;  // compatibility.md, C25
  std::int32_t windowY = -1;
  std::int32_t renderTargetWidth = 1280;
  std::int32_t renderTargetHeight = 1440;
  float renderScale = 1.0F;
  std::int32_t windowWidth = 2560;
  std::int32_t windowHeight = 1440;
};

// The geometry that the settings ask for: the window before scaling, and the scale in percent. The scale enlarges only,
// an eye's picture has at least 500 by 600 pixels (and at most 1e9), and the window follows the scaled
// picture (compatibility.md, C26).
[[nodiscard]] DisplayGeometry ScaledGeometry(std::int32_t windowWidth, std::int32_t windowHeight,
                                             std::int32_t renderScalePercent);

}  // namespace ombrel
