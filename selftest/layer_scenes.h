#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "picture/comparison.h"
#include "picture/image.h"

namespace ombrel::selftest {

// DXGI_FORMAT, as far as layers are drawn of it here.
enum class LayerFormat : std::uint32_t { kRgbaTypeless = 27, kRgba = 28, kRgbaSrgb = 29, kBgraTypeless = 90 };

// uMin, vMin, uMax, vMax of each eye.
using Bounds = std::array<std::array<float, 4>, 2>;

inline constexpr int kLayerSide = 128;  // of an eye's texture, in pixels
inline constexpr int kLayerOutputHeight = 128;

// A layer that a runtime hands over, and what it is drawn into.
struct LayerScene {
  std::string name;
  bench::Painter left, right;  // the bytes of the textures
  Bounds bounds{{{0, 0, 1, 1}, {0, 0, 1, 1}}};
  LayerFormat format = LayerFormat::kRgba;
  int outputWidth = 2 * kLayerSide;
  bool invertY = false;
  // The largest difference that is well, in levels of 255. Where texels are blended, a graphics card may round the place
  // between two of them to a 256th, and dark levels spread that.
  int tolerance = 1;
};

[[nodiscard]] std::vector<LayerScene> LayerScenes();

// What the driver has to make of it: decoded as the format says, filtered linearly, and raised to 1/2.2.
[[nodiscard]] bench::Image ExpectedPicture(const LayerScene& scene);

// The largest difference of any channel away from the rims of both eyes' halves, where the texture's opposite edges blend.
// 256 for pictures of two sizes.
[[nodiscard]] int DifferenceInside(const bench::Image& drawn, const bench::Image& expected);

}  // namespace ombrel::selftest
