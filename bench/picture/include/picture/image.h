#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace bench {

using Rgba = std::array<std::uint8_t, 4>;

// An 8-bit RGBA picture, rows from the top, no padding.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;

  Image() = default;
  Image(int imageWidth, int imageHeight)
      : width(imageWidth),
        height(imageHeight),
        pixels(static_cast<std::size_t>(imageWidth) * static_cast<std::size_t>(imageHeight) * 4) {}
  Image(int imageWidth, int imageHeight, std::vector<std::uint8_t> rgba)
      : width(imageWidth), height(imageHeight), pixels(std::move(rgba)) {}

  std::size_t Offset(int x, int y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
  }
  bool Holds(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
  Rgba At(int x, int y) const {
    const std::size_t at = Offset(x, y);
    return {pixels[at], pixels[at + 1], pixels[at + 2], pixels[at + 3]};
  }
  void Set(int x, int y, const Rgba& colour) {
    const std::size_t at = Offset(x, y);
    for (std::size_t i = 0; i < colour.size(); ++i) pixels[at + i] = colour[i];
  }
};

}  // namespace bench
