#pragma once

#include <d3d11.h>

namespace bench {

// Replaces the context methods that read shared textures and those that observers are told of. They act on the
// immediate contexts of the registered devices and pass all others' calls through. False when the class cannot
// be patched.
[[nodiscard]] bool PatchContext(ID3D11DeviceContext* context);

}  // namespace bench
