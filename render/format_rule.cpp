#include "render/format_rule.h"

#include <algorithm>
#include <array>

namespace ombrel {
namespace {

constexpr std::array<std::uint32_t, 22> kTypelessFormats{1,  5,  9,  15, 19, 23, 27, 33, 39, 44, 48,
                                                         53, 60, 70, 73, 76, 79, 82, 90, 92, 94, 97};

struct Replacement {
  std::uint32_t typeless;
  std::uint32_t typed;
};
constexpr std::array<Replacement, 6> kReplacements{{
    {1, 2},    // R32G32B32A32: FLOAT
    {5, 6},    // R32G32B32: FLOAT
    {9, 11},   // R16G16B16A16: UNORM
    {27, 28},  // R8G8B8A8: UNORM
    {90, 91},  // B8G8R8A8: UNORM_SRGB
    {92, 93},  // B8G8R8X8: UNORM_SRGB
}};

}  // namespace

bool IsTypelessFormat(std::uint32_t format) {
  return std::ranges::find(kTypelessFormats, format) != kTypelessFormats.end();
}

std::uint32_t ViewFormat(std::uint32_t format) {
  if (!IsTypelessFormat(format)) return format;
  const auto found = std::ranges::find(kReplacements, format, &Replacement::typeless);
  return found != kReplacements.end() ? found->typed : format;
}

}  // namespace ombrel
