#pragma once

#include <cstdint>

#include "device_d3d11.h"

namespace ombrel {

// A texture of the runtime's, opened by its shared handle. Empty when it is not to be had.
//
// Sync and finished textures are opened, and asked for their keyed mutex, for each frame. Kept by their handles they
// could go stale: the runtime does not say when it lets one go, nothing promises that the same handle will not name
// another texture then, and a texture that is kept is memory that the runtime cannot get back. Swap textures are told of
// when they go, and are opened once.
[[nodiscard]] ComPtr<ID3D11Texture2D> OpenRuntimeTexture(ID3D11Device* device, std::uint64_t handle);

// The hold on a runtime texture's keyed mutex, key 0; given back at the end of its life. A texture without a keyed mutex
// needs no hold.
class RuntimeTextureHold {
 public:
  RuntimeTextureHold() = default;
  RuntimeTextureHold(const RuntimeTextureHold&) = delete;
  RuntimeTextureHold& operator=(const RuntimeTextureHold&) = delete;
  ~RuntimeTextureHold() { Release(); }

  // False when the texture has a keyed mutex that could not be had in time.
  [[nodiscard]] bool Acquire(const ComPtr<ID3D11Texture2D>& texture, std::uint32_t timeoutMs);
  void Release();

 private:
  ComPtr<ID3D11Texture2D> texture_;  // kept open as long as it is held
  ComPtr<IDXGIKeyedMutex> keyedMutex_;
};

}  // namespace ombrel
