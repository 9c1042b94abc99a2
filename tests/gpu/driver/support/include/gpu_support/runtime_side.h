#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <cstdint>

#include "picture/comparison.h"

namespace ombrel::test {

using bench::OneColour;
using bench::Painter;
using bench::Pattern;
using Microsoft::WRL::ComPtr;

// The runtime's own device, on which it makes and paints what it shares with the driver. It is made when it is first
// needed. Throws std::runtime_error when Direct3D fails. One thread.
class RuntimeSide {
 public:
  // A texture of the runtime's own, with the misc flag that says how it is shared.
  struct Shared {
    ComPtr<ID3D11Texture2D> texture;
    ComPtr<IDXGIKeyedMutex> keyedMutex;  // none if it was not asked for
    std::uint64_t handle = 0;
  };
  [[nodiscard]] Shared MakeShared(UINT width, UINT height, DXGI_FORMAT format, UINT miscFlags);

  // Paints a texture of 4 bytes a pixel, under its keyed mutex if there is one, and makes the pixels visible to the
  // driver. The channels are in the order of the texture's bytes.
  void Paint(const Shared& shared, const Painter& painter);
  void Paint(std::uint64_t handle, const Painter& painter) { Paint(Open(handle), painter); }

  // What a texture with a keyed mutex and 4 bytes a pixel shows.
  [[nodiscard]] bench::Image See(std::uint64_t handle);
  // Whether a handle names a texture at this moment.
  [[nodiscard]] bool CanOpen(std::uint64_t handle);

 private:
  [[nodiscard]] ID3D11Device& Device();
  [[nodiscard]] Shared Open(std::uint64_t handle);

  ComPtr<ID3D11Device> device_;
  ComPtr<ID3D11DeviceContext> context_;
};

}  // namespace ombrel::test
