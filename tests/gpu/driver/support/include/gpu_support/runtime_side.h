#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <cstdint>
#include <functional>

#include "companion/image.h"

namespace ombrel::test {

using Microsoft::WRL::ComPtr;

// What a pixel at (x, y) is to be. The channels are in the order of the texture's bytes.
using Painter = std::function<bench::Rgba(int x, int y)>;

[[nodiscard]] Painter OneColour(const bench::Rgba& rgba);
[[nodiscard]] Painter Pattern(std::uint8_t seed);

// The runtime's own device, on which it makes and paints what it shares with the driver. It is made when it is first
// needed. Throws std::runtime_error when Direct3D fails. One thread.
class RuntimeSide {
 public:
  // Paints a texture that the driver made, by its shared handle, and makes the pixels visible to the driver.
  void Paint(std::uint64_t handle, const Painter& painter);

  // A texture of the runtime's own, with the misc flag that says how it is shared.
  struct Shared {
    ComPtr<ID3D11Texture2D> texture;
    ComPtr<IDXGIKeyedMutex> keyedMutex;  // none if it was not asked for
    std::uint64_t handle = 0;
  };
  [[nodiscard]] Shared MakeShared(UINT width, UINT height, DXGI_FORMAT format, UINT miscFlags);
  // Paints it, under its keyed mutex if there is one. All formats with 4 bytes a pixel.
  void Paint(const Shared& shared, const Painter& painter);

  // What a texture with a keyed mutex and 4 bytes a pixel shows.
  [[nodiscard]] bench::Image See(std::uint64_t handle);

  // Whether a handle names a texture at this moment.
  [[nodiscard]] bool CanOpen(std::uint64_t handle);
  [[nodiscard]] D3D11_TEXTURE2D_DESC Describe(std::uint64_t handle);

 private:
  [[nodiscard]] ID3D11Device& Device();
  [[nodiscard]] ComPtr<ID3D11Texture2D> Open(std::uint64_t handle);
  void Write(ID3D11Texture2D* texture, const Painter& painter);

  ComPtr<ID3D11Device> device_;
  ComPtr<ID3D11DeviceContext> context_;
};

}  // namespace ombrel::test
