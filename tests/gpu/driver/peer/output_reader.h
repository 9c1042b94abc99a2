#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "companion/shared_block.h"

namespace ombrel::test {

// The driver's output textures as they look in this process. Textures are told by their place in the list of handles
// that was attached last. Throws when Direct3D refuses something. One thread.
class OutputReader {
 public:
  // Opens the textures, and the block of that name unless it is empty.
  void Attach(const std::vector<std::uint32_t>& handles, const std::string& block);
  // Makes a texture with a keyed mutex of its own, with a pattern in it, in the place of those that were attached. Its
  // shared handle.
  std::uint32_t Make(std::uint8_t pattern);
  void Paint(std::size_t texture, std::uint8_t pattern);

  HRESULT Acquire(std::size_t texture, UINT64 key, DWORD timeoutMs) {
    return outputs_.at(texture).keyedMutex->AcquireSync(key, timeoutMs);
  }
  HRESULT Release(std::size_t texture) { return outputs_.at(texture).keyedMutex->ReleaseSync(0); }

  // Holds areas of a texture against what they should show; all of a texture's pixels are 4 bytes. An area is
  // {"name", "x", "y", "width", "height", "tolerance"} and either "rgba" or "pattern". The answer names the first wrong
  // pixel of each area that has one.
  nlohmann::json Compare(std::size_t texture, const nlohmann::json& areas);

  // The 16 floats beside a texture.
  nlohmann::json Slot(int texture) const { return block_.ReadSlot(texture); }

 private:
  struct Output {
    Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
    Microsoft::WRL::ComPtr<IDXGIKeyedMutex> keyedMutex;
  };
  void MakeDevice();
  void Add(Microsoft::WRL::ComPtr<ID3D11Texture2D> texture);

  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  std::vector<Output> outputs_;
  companion::SharedBlock block_;
};

}  // namespace ombrel::test
