#pragma once

#include <cstdint>
#include <vector>

#include "scene_mesh.h"

namespace bench {

/// A square picture of RGBA bytes (red first).
struct Picture {
  std::uint32_t size = 0;
  std::vector<std::uint8_t> bytes;
};

/// The pictures of one surface, each half the size of the one before, down to one pixel.
/// Screen colours if `gammaEncoded`, else linear ones (the screen's raised to 2.2).
[[nodiscard]] std::vector<Picture> PaintSurface(Surface surface, bool gammaEncoded);

}  // namespace bench
