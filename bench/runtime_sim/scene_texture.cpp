#include "scene_texture.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace bench {
namespace {

using Colour = std::array<float, 3>;

constexpr std::uint32_t kSize = 256;
constexpr float kGamma = 2.2F;

struct Glyph {
  std::array<std::uint8_t, 7> rows;  ///< five pixels each, the leftmost in bit 4
};

constexpr Glyph kN = {{0x11, 0x19, 0x19, 0x15, 0x13, 0x13, 0x11}};
constexpr Glyph kE = {{0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F}};
constexpr Glyph kS = {{0x0F, 0x10, 0x10, 0x0E, 0x01, 0x01, 0x1E}};
constexpr Glyph kW = {{0x11, 0x11, 0x11, 0x15, 0x15, 0x1B, 0x11}};

// A wall is twice as wide as it is high, so the letter is drawn half as wide as it shall look.
bool InGlyph(const Glyph& glyph, std::uint32_t x, std::uint32_t y) {
  constexpr std::uint32_t kPixelWidth = 13;
  constexpr std::uint32_t kPixelHeight = 26;
  constexpr std::uint32_t kLeft = (kSize - 5 * kPixelWidth) / 2;
  constexpr std::uint32_t kTop = (kSize - 7 * kPixelHeight) / 2;
  if (x < kLeft || y < kTop) {
    return false;
  }
  const std::uint32_t column = (x - kLeft) / kPixelWidth;
  const std::uint32_t row = (y - kTop) / kPixelHeight;
  return column < 5 && row < 7 && ((glyph.rows[row] >> (4 - column)) & 1) != 0;
}

Colour WallColour(const Glyph& glyph, const Colour& base, std::uint32_t x, std::uint32_t y) {
  constexpr std::uint32_t kFrame = 6;
  if (x < kFrame / 2 || y < kFrame || x >= kSize - kFrame / 2 || y >= kSize - kFrame) {
    return {0.08F, 0.08F, 0.08F};
  }
  if (InGlyph(glyph, x, y)) {
    return {1.0F, 1.0F, 1.0F};
  }
  const bool line = x % 32 < 1 || y % 64 < 2;
  const float shade = line ? 0.7F : 1.0F;
  return {base[0] * shade, base[1] * shade, base[2] * shade};
}

Colour ColourAt(Surface surface, std::uint32_t x, std::uint32_t y) {
  switch (surface) {
    case Surface::NorthWall:
      return WallColour(kN, {0.15F, 0.35F, 0.85F}, x, y);
    case Surface::EastWall:
      return WallColour(kE, {0.82F, 0.16F, 0.16F}, x, y);
    case Surface::SouthWall:
      return WallColour(kS, {0.85F, 0.68F, 0.1F}, x, y);
    case Surface::WestWall:
      return WallColour(kW, {0.12F, 0.6F, 0.2F}, x, y);
    case Surface::Floor:
      return (x / 16 + y / 16) % 2 == 0 ? Colour{0.62F, 0.62F, 0.62F} : Colour{0.22F, 0.22F, 0.24F};
    case Surface::Ceiling:
      return x / 16 % 2 == 0 ? Colour{0.55F, 0.3F, 0.7F} : Colour{0.9F, 0.85F, 0.95F};
    case Surface::Crate: {
      const bool edge = x < 20 || y < 20 || x >= kSize - 20 || y >= kSize - 20;
      const bool brace = x + 14 > y && y + 14 > x;
      return edge || brace ? Colour{1.0F, 1.0F, 1.0F} : Colour{0.55F, 0.55F, 0.55F};
    }
    case Surface::Plain:
    case Surface::Count:
      break;
  }
  return {1.0F, 1.0F, 1.0F};
}

std::uint8_t ToByte(float value) { return static_cast<std::uint8_t>(std::lround(value * 255.0F)); }

Picture PaintLargest(Surface surface, bool gammaEncoded) {
  Picture picture{kSize, {}};
  picture.bytes.reserve(std::size_t{4} * kSize * kSize);
  for (std::uint32_t y = 0; y < kSize; ++y) {
    for (std::uint32_t x = 0; x < kSize; ++x) {
      for (const float channel : ColourAt(surface, x, y)) {
        picture.bytes.push_back(ToByte(gammaEncoded ? channel : std::pow(channel, kGamma)));
      }
      picture.bytes.push_back(255);
    }
  }
  return picture;
}

Picture Halve(const Picture& from) {
  Picture half{from.size / 2, {}};
  const std::size_t row = std::size_t{4} * from.size;
  for (std::size_t y = 0; y < half.size; ++y) {
    for (std::size_t x = 0; x < half.size; ++x) {
      for (std::size_t channel = 0; channel < 4; ++channel) {
        const std::uint8_t* corner = from.bytes.data() + 2 * y * row + 8 * x + channel;
        const int sum = corner[0] + corner[4] + corner[row] + corner[row + 4];
        half.bytes.push_back(static_cast<std::uint8_t>((sum + 2) / 4));
      }
    }
  }
  return half;
}

}  // namespace

std::vector<Picture> PaintSurface(Surface surface, bool gammaEncoded) {
  std::vector<Picture> pictures = {PaintLargest(surface, gammaEncoded)};
  while (pictures.back().size > 1) {
    pictures.push_back(Halve(pictures.back()));
  }
  return pictures;
}

}  // namespace bench
