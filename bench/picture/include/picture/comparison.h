#pragma once

#include <functional>
#include <string>

#include "picture/image.h"

namespace bench {

// What a pixel at (x, y) is, or should be.
using Painter = std::function<Rgba(int x, int y)>;

[[nodiscard]] Painter OneColour(const Rgba& rgba);
// A pattern that a number stands for. Within 1024 by 1024 pixels no two of one pattern, or of two, are alike.
[[nodiscard]] Painter Pattern(std::uint8_t seed);

[[nodiscard]] Image Paint(int width, int height, const Painter& painter);

struct Box {
  int x = 0, y = 0, width = 1, height = 1;
};

// The first pixel of the box that differs by more than `tolerance` in a channel, in words; empty when there is none.
[[nodiscard]] std::string FirstDifference(const Image& image, const Box& box, const Painter& wanted, int tolerance);

// The largest difference of any channel; 256 for pictures of two sizes.
[[nodiscard]] int LargestDifference(const Image& left, const Image& right);

}  // namespace bench
