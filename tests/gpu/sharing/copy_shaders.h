#pragma once

#include "side.h"

namespace bench::test {

// Binds shaders with which a draw of three vertices copies the texture at pixel slot 0 to the target, pixel by pixel.
void BindCopyShaders(const Side& side);

}  // namespace bench::test
