#include "picture/drawing.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include "stb/stb_easy_font.h"
#include "stb/stb_image.h"
#include "stb/stb_image_write.h"

namespace bench {
namespace {

constexpr int kTextScale = 2;

// As stb_easy_font lays its vertices out.
struct FontVertex {
  float x, y, z;
  unsigned char colour[4];
};

int Scaled(float value) { return static_cast<int>(std::lround(value * kTextScale)); }

void FillBox(Image& image, int left, int top, int right, int bottom, const Rgba& colour) {
  for (int y = std::max(top, 0); y < std::min(bottom, image.height); ++y) {
    for (int x = std::max(left, 0); x < std::min(right, image.width); ++x) image.Set(x, y, colour);
  }
}

// The mean colour of a box of pixels.
Rgba Mean(const Image& image, int left, int top, int right, int bottom) {
  std::array<std::uint64_t, 4> sum{};
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) {
      const std::size_t at = image.Offset(x, y);
      for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += image.pixels[at + i];
    }
  }
  const auto count = static_cast<std::uint64_t>(right - left) * static_cast<std::uint64_t>(bottom - top);
  Rgba mean{};
  for (std::size_t i = 0; i < sum.size(); ++i) mean[i] = static_cast<std::uint8_t>((sum[i] + count / 2) / count);
  return mean;
}

}  // namespace

Image Shrink(const Image& image, int width) {
  if (width <= 0 || width >= image.width) return image;
  Image small(width, std::max(1, image.height * width / image.width));
  for (int y = 0; y < small.height; ++y) {
    const int top = y * image.height / small.height, bottom = (y + 1) * image.height / small.height;
    for (int x = 0; x < small.width; ++x) {
      small.Set(x, y, Mean(image, x * image.width / small.width, top, (x + 1) * image.width / small.width, bottom));
    }
  }
  return small;
}

void Paste(const Image& source, Image& target, int x, int y) {
  for (int row = 0; row < source.height; ++row) {
    for (int column = 0; column < source.width; ++column) {
      if (target.Holds(x + column, y + row)) target.Set(x + column, y + row, source.At(column, row));
    }
  }
}

void WriteCaption(Image& image, int x, int y, const std::string& text) {
  std::vector<FontVertex> vertices(400 * text.size() / sizeof(FontVertex) + 4);
  std::string writable = text;
  const int quads = stb_easy_font_print(0, 0, writable.data(), nullptr, vertices.data(),
                                        static_cast<int>(vertices.size() * sizeof(FontVertex)));
  for (int i = 0; i < quads; ++i) {
    const FontVertex& first = vertices[static_cast<std::size_t>(4 * i)];
    const FontVertex& third = vertices[static_cast<std::size_t>(4 * i + 2)];
    FillBox(image, x + Scaled(first.x), y + Scaled(first.y), x + Scaled(third.x), y + Scaled(third.y),
            {255, 255, 255, 255});
  }
}

bool SavePng(const Image& image, const std::filesystem::path& path) {
  stbi_write_png_compression_level = 4;
  return stbi_write_png(path.string().c_str(), image.width, image.height, 4, image.pixels.data(), image.width * 4) != 0;
}

Image LoadPng(const std::filesystem::path& path) {
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
      stbi_load(path.string().c_str(), &width, &height, &channels, 4), &stbi_image_free);
  Image image(width, height);
  if (pixels) std::memcpy(image.pixels.data(), pixels.get(), image.pixels.size());
  return image;
}

}  // namespace bench
