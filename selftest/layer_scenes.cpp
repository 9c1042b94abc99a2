#include "layer_scenes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace ombrel::selftest {
namespace {

using Colour = std::array<double, 3>;

constexpr int kBlended = 6;
constexpr int kRim = 2;

// Every level of a channel, and of another one the other way round.
bench::Rgba Levels(int x, int y) {
  const auto across = static_cast<std::uint8_t>(2 * x), down = static_cast<std::uint8_t>(2 * y);
  return {across, down, static_cast<std::uint8_t>(255 - across), static_cast<std::uint8_t>(255 - down)};
}

double SrgbToLinear(double value) { return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); }

Colour Decode(const bench::Rgba& bytes, LayerFormat format) {
  const bool isSrgb = format == LayerFormat::kRgbaSrgb || format == LayerFormat::kBgraTypeless;
  Colour colour{bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0};
  if (format == LayerFormat::kBgraTypeless) std::swap(colour[0], colour[2]);
  if (isSrgb) std::ranges::transform(colour, colour.begin(), SrgbToLinear);
  return colour;
}

int Wrapped(int texel) { return (texel % kLayerSide + kLayerSide) % kLayerSide; }

// Linear filtering, of decoded texels.
Colour Sample(const LayerScene& scene, const bench::Painter& painter, double u, double v) {
  const double x = u * kLayerSide - 0.5, y = v * kLayerSide - 0.5;
  const auto left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
  Colour sum{};
  for (const int down : {0, 1}) {
    for (const int across : {0, 1}) {
      const double weight = (across == 1 ? x - left : 1 - (x - left)) * (down == 1 ? y - top : 1 - (y - top));
      const Colour texel = Decode(painter(Wrapped(left + across), Wrapped(top + down)), scene.format);
      for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += weight * texel[i];
    }
  }
  return sum;
}

bench::Rgba Encode(const Colour& colour) {
  bench::Rgba bytes{0, 0, 0, 255};
  for (std::size_t i = 0; i < colour.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(std::lround(255 * std::pow(colour[i], 1 / 2.2)));
  }
  return bytes;
}

void DrawEye(const LayerScene& scene, std::size_t eye, bench::Image& image) {
  const int half = scene.outputWidth / 2, start = eye == 0 ? 0 : half;
  const auto [uMin, vMin, uMax, vMax] = scene.bounds[eye];
  for (int y = 0; y < image.height; ++y) {
    double v = vMin + (vMax - vMin) * (y + 0.5) / image.height;
    if (scene.invertY) v = 1 - v;
    for (int x = 0; x < half; ++x) {
      const double u = uMin + (uMax - uMin) * (x + 0.5) / half;
      image.Set(start + x, y, Encode(Sample(scene, eye == 0 ? scene.left : scene.right, u, v)));
    }
  }
}

}  // namespace

std::vector<LayerScene> LayerScenes() {
  const Bounds part{{{0.1F, 0.2F, 0.83F, 0.71F}, {0.5F, 0, 1, 0.5F}}};
  const Bounds flipped{{{0, 1, 1, 0}, {1, 0, 0, 1}}};
  using bench::Pattern;
  std::vector<LayerScene> scenes(9);
  scenes[0] = {.name = "levels", .left = Levels, .right = Pattern(1)};
  scenes[1] = {.name = "typeless_rgba", .left = Levels, .right = Pattern(2), .format = LayerFormat::kRgbaTypeless};
  scenes[2] = {.name = "typeless_bgra", .left = Levels, .right = Pattern(3), .format = LayerFormat::kBgraTypeless};
  scenes[3] = {.name = "srgb", .left = Levels, .right = Pattern(4), .format = LayerFormat::kRgbaSrgb};
  scenes[4] = {.name = "enlarged_part", .left = Levels, .right = Levels, .bounds = part, .tolerance = kBlended};
  scenes[5] = {.name = "flipped", .left = Levels, .right = Pattern(5), .bounds = flipped};
  scenes[6] = {.name = "shrunk", .left = Levels, .right = Levels, .outputWidth = 142, .tolerance = kBlended};
  scenes[7] = {.name = "odd_width", .left = Levels, .right = Pattern(6), .outputWidth = 257};
  scenes[8] = {.name = "inverted", .left = Levels, .right = Pattern(7), .invertY = true};
  return scenes;
}

bench::Image ExpectedPicture(const LayerScene& scene) {
  bench::Image image(scene.outputWidth, kLayerOutputHeight);
  for (const std::size_t eye : {0U, 1U}) DrawEye(scene, eye, image);
  return image;
}

int DifferenceInside(const bench::Image& drawn, const bench::Image& expected) {
  if (drawn.width != expected.width || drawn.height != expected.height) return 256;
  const int half = expected.width / 2;
  int largest = 0;
  for (int y = kRim; y < expected.height - kRim; ++y) {
    for (int x = 0; x < 2 * half; ++x) {
      if (x % half < kRim || x % half >= half - kRim) continue;
      const bench::Rgba one = drawn.At(x, y), other = expected.At(x, y);
      for (std::size_t i = 0; i < one.size(); ++i) largest = std::max(largest, std::abs(one[i] - other[i]));
    }
  }
  return largest;
}

}  // namespace ombrel::selftest
