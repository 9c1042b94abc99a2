#pragma once

#include <d3d11.h>

namespace bench {

// Replaces the device methods that share textures, count objects and report to observers. They act on the
// registered devices and pass all others' calls through. False when the class cannot be patched.
[[nodiscard]] bool PatchDevice(ID3D11Device* device);

}  // namespace bench
