#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "companion/image.h"
#include "companion/shared_block.h"

namespace ombrel::test {

// The driver's output textures as they look in this process. Textures are told by their place in the list of handles
// that was attached last. One thread.
class OutputReader {
 public:
  // Opens the textures, and the block of that name unless it is empty. The answer lists what was opened:
  // {"width", "height", "format"} for each texture. Throws when a texture cannot be opened.
  nlohmann::json Attach(const std::vector<std::uint32_t>& handles, const std::string& block);

  // Key 0; the result as a number.
  HRESULT Acquire(std::size_t texture, DWORD timeoutMs);
  HRESULT Release(std::size_t texture);

  // Holds areas of a texture against what they should show; all of a texture's pixels are 4 bytes. An area is
  // {"name", "x", "y", "width", "height", "tolerance"} and either "rgba" or "pattern", a number that stands for a
  // picture without two equal pixels. The answer names the first wrong pixel of each area that has one.
  nlohmann::json Compare(std::size_t texture, const nlohmann::json& areas);

  // The 16 floats beside a texture.
  nlohmann::json Slot(int texture) const { return block_.ReadSlot(texture); }

 private:
  struct Output {
    Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
    Microsoft::WRL::ComPtr<IDXGIKeyedMutex> keyedMutex;
  };
  [[nodiscard]] Output Open(std::uint32_t handle);

  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  std::vector<Output> outputs_;
  bench::SharedBlock block_;
};

}  // namespace ombrel::test
