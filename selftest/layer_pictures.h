#pragma once

#include <string>
#include <vector>

#include "layer_scenes.h"

namespace ombrel::selftest {

struct LayerPicture {
  LayerScene scene;
  bench::Image image;
};

// What the driver's renderer makes of LayerScenes on this machine's Direct3D. Throws std::runtime_error when it fails.
[[nodiscard]] std::vector<LayerPicture> DrawLayerPictures();

}  // namespace ombrel::selftest
