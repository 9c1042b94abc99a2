#include "hmd/display_geometry.h"

#include <algorithm>

namespace ombrel {
namespace {

constexpr std::int32_t kLeastWidth = 500;
constexpr std::int32_t kLeastHeight = 600;
// Twice the width still fits.
constexpr float kMost = 1.0e9F;

std::int32_t Scaled(std::int32_t size, float scale, std::int32_t least) {
  return std::max(static_cast<std::int32_t>(std::clamp(static_cast<float>(size) * scale, -kMost, kMost)), least);
}

}  // namespace

DisplayGeometry ScaledGeometry(std::int32_t windowWidth, std::int32_t windowHeight, std::int32_t renderScalePercent) {
  DisplayGeometry geometry;
  geometry.renderScale = std::max(static_cast<float>(renderScalePercent) / 100.0F, 1.0F);
  geometry.renderTargetWidth = Scaled(windowWidth / 2, geometry.renderScale, kLeastWidth);
  geometry.renderTargetHeight = Scaled(windowHeight, geometry.renderScale, kLeastHeight);
  geometry.windowWidth = 2 * geometry.renderTargetWidth;
  geometry.windowHeight = geometry.renderTargetHeight;
  return geometry;
}

}  // namespace ombrel
