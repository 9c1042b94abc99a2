#pragma once

#include <array>
#include <cstdint>

#include "device_d3d11.h"

namespace ombrel {

// The two textures that carry finished frames to the companion (double buffering), each with its keyed mutex and
// render-target view. Made and released by set-up, used by one hand-off at a time, never both at once.
class OutputPair {
 public:
  void Release();
  // False, and empty, unless both could be made.
  bool Create(ID3D11Device& device, std::uint32_t width, std::uint32_t height, DXGI_FORMAT format);
  // Views in the given format, anew.
  void CreateViews(ID3D11Device& device, DXGI_FORMAT format);

  [[nodiscard]] bool Acquire(std::int32_t index, std::uint32_t timeoutMs);
  [[nodiscard]] bool ReleaseToCompanion(std::int32_t index);

  [[nodiscard]] std::uint64_t SharedHandle(std::int32_t index) const;
  [[nodiscard]] ID3D11Texture2D* Texture(std::int32_t index) const { return At(index).texture.Get(); }
  [[nodiscard]] ID3D11RenderTargetView* View(std::int32_t index) const { return At(index).view.Get(); }

 private:
  struct Output {
    ComPtr<ID3D11Texture2D> texture;
    ComPtr<IDXGIKeyedMutex> keyedMutex;
    ComPtr<ID3D11RenderTargetView> view;
  };
  [[nodiscard]] const Output& At(std::int32_t index) const { return outputs_[static_cast<std::size_t>(index)]; }

  std::array<Output, 2> outputs_;
};

}  // namespace ombrel
