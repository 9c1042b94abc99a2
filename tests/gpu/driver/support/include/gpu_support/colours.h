#pragma once

#include <cmath>

#include "picture/image.h"

namespace ombrel::test {

inline constexpr bench::Rgba kRed{255, 0, 0, 255}, kGreen{0, 255, 0, 255}, kBlue{0, 0, 255, 255},
    kWhite{255, 255, 255, 255}, kBlack{0, 0, 0, 255};

// A linear level from 0 to 1 as the companion sees it, gamma-encoded by arithmetic of the test's own.
[[nodiscard]] inline std::uint8_t Encoded(double linear) {
  return static_cast<std::uint8_t>(std::lround(255.0 * std::pow(linear, 1.0 / 2.2)));
}
[[nodiscard]] inline bench::Rgba Encoded(const bench::Rgba& linear) {
  return {Encoded(linear[0] / 255.0), Encoded(linear[1] / 255.0), Encoded(linear[2] / 255.0), 255};
}

}  // namespace ombrel::test
