#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ombrel {

// Whether an adapter's description (a NUL-terminated text of 16-bit units, at least seven of them) names the adapter
// that is preferred to the system's default. The terminator counts: compatibility.md, C44.
template <typename Unit>
[[nodiscard]] constexpr bool IsPreferredAdapter(const Unit* description) {
  static_assert(sizeof(Unit) == 2);
  constexpr std::array<char, 7> kName{'N', 'V', 'I', 'D', 'I', 'A', '\0'};
  for (std::size_t i = 0; i < kName.size(); ++i) {
    if (description[i] != static_cast<Unit>(kName[i])) return false;
  }
  return true;
}

// An eye's part of the output, in pixels.
struct EyeViewport {
  float x, width, height;  // y is 0
};

// Left and right half. Of an odd width the last column stays undrawn (compatibility.md, C47).
[[nodiscard]] constexpr std::array<EyeViewport, 2> EyeViewports(std::uint32_t width, std::uint32_t height) {
  const auto half = static_cast<float>(width / 2);
  const auto tall = static_cast<float>(height);
  return {{{0.0F, half, tall}, {half, half, tall}}};
}

}  // namespace ombrel
