#pragma once

#include <cstdint>

#include "companion/image.h"

namespace ombrel::test {

// A pixel of the picture that a seed stands for. Within 1024 by 1024 pixels no two are alike.
constexpr bench::Rgba PatternPixel(std::uint8_t seed, int x, int y) {
  const auto number = static_cast<std::uint32_t>((y % 1024) * 1024 + x % 1024);
  return {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8),
          static_cast<std::uint8_t>(number >> 16), seed};
}

}  // namespace ombrel::test
