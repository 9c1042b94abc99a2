#pragma once

#include "surface_header.h"

#include <d3d11.h>
#include <wrl/client.h>

#include <cstddef>
#include <span>

namespace bench {

// Copies whole textures between their device and memory, rows without gaps. Uses the device's immediate context
// and leaves its state as it is: call where a program may use that context.
//
// Both ways go through a staging texture that is kept. For uploads UpdateSubresource would do as well, but in
// turns with it on wined3d and llvmpipe it was never the faster one.
class TextureCopier {
 public:
  // `texture` is not kept alive. It has the given format, one level and default usage.
  TextureCopier(ID3D11Texture2D* texture, const SurfaceFormat& format);

  // False when the device fails; the texture, or `pixels`, are then as before.
  [[nodiscard]] bool Upload(std::span<const std::byte> pixels);
  [[nodiscard]] bool Download(std::span<std::byte> pixels);
  // The staging texture holds a reference to the device, so it must not outlive the program's own references
  // to the texture.
  void DropStaging() { staging_.Reset(); }

 private:
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> Prepare();

  ID3D11Texture2D* texture_;
  SurfaceFormat format_;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> staging_;
};

}  // namespace bench
