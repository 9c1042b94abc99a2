#pragma once

#include <d3d11.h>
#include <wrl/client.h>

namespace preview {

// A Direct3D 11 device: candidate 0 is on the system's default adapter, the others on each adapter in turn. Null when
// that one has none, or there are no more.
[[nodiscard]] Microsoft::WRL::ComPtr<ID3D11Device> CreateDevice(unsigned candidate);

}  // namespace preview
