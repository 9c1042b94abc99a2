#pragma once

#include <d3d11.h>
#include <wrl/client.h>

namespace ombrel {

using Microsoft::WRL::ComPtr;

// A Direct3D 11 device on the preferred adapter, or on the system's default. Both are empty when there is none.
struct RenderDevice {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
};

[[nodiscard]] RenderDevice CreateRenderDevice();

}  // namespace ombrel
