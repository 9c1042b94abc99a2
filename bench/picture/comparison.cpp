#include "picture/comparison.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace bench {
namespace {

std::string Words(const Rgba& colour) {
  std::ostringstream text;
  text << '(' << int{colour[0]} << ", " << int{colour[1]} << ", " << int{colour[2]} << ", " << int{colour[3]} << ')';
  return text.str();
}

std::string Place(int x, int y) { return "pixel (" + std::to_string(x) + ", " + std::to_string(y) + ')'; }

bool Near(const Rgba& left, const Rgba& right, int tolerance) {
  return std::ranges::equal(left, right,
                            [tolerance](int one, int other) { return std::abs(one - other) <= tolerance; });
}

}  // namespace

Painter OneColour(const Rgba& rgba) {
  return [rgba](int /*x*/, int /*y*/) { return rgba; };
}

Painter Pattern(std::uint8_t seed) {
  return [seed](int x, int y) {
    const auto number = static_cast<std::uint32_t>(y % 1024 * 1024 + x % 1024);
    return Rgba{static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8),
                static_cast<std::uint8_t>(number >> 16), seed};
  };
}

Image Paint(int width, int height, const Painter& painter) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.Set(x, y, painter(x, y));
  }
  return image;
}

std::string FirstDifference(const Image& image, const Box& box, const Painter& wanted, int tolerance) {
  for (int y = box.y; y < box.y + box.height; ++y) {
    for (int x = box.x; x < box.x + box.width; ++x) {
      if (!image.Holds(x, y)) return Place(x, y) + " lies outside the frame";
      if (Near(image.At(x, y), wanted(x, y), tolerance)) continue;
      return Place(x, y) + " is " + Words(image.At(x, y)) + ", expected " + Words(wanted(x, y)) + " within " +
             std::to_string(tolerance);
    }
  }
  return {};
}

int LargestDifference(const Image& left, const Image& right) {
  if (left.width != right.width || left.height != right.height) return 256;
  int largest = 0;
  for (std::size_t i = 0; i < left.pixels.size(); ++i) {
    largest = std::max(largest, std::abs(left.pixels[i] - right.pixels[i]));
  }
  return largest;
}

}  // namespace bench
