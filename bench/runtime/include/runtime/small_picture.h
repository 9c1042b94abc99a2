#pragma once

#include <nlohmann/json.hpp>

namespace bench {

// Of the smallest picture that the driver makes, for each eye, in pixels.
inline constexpr int kSmallEyeWidth = 500, kSmallEyeHeight = 600;

// All of the driver's settings, so that none is missing, with that picture. `hmdMode` 0: layers, 1: finished textures.
[[nodiscard]] nlohmann::json SmallPictureSettings(int hmdMode);

}  // namespace bench
