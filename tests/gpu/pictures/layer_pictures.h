#pragma once

#include <string>
#include <vector>

#include "picture/image.h"

namespace ombrel::test {

struct NamedPicture {
  std::string name;
  bench::Image image;
};

// What the renderer makes of layers of several formats, sizes and bounds. The same on every machine, but for what the
// Direct3D implementation makes different. Throws std::runtime_error when Direct3D fails.
[[nodiscard]] std::vector<NamedPicture> DrawLayerPictures();

}  // namespace ombrel::test
