#pragma once

#include <array>
#include <cstdint>

#include "device_d3d11.h"
#include "link/frame_renderer.h"

namespace ombrel {

// The Direct3D state that draws a layer's two eyes, side by side, into one render target. One thread at a time.
class LayerPipeline {
 public:
  // Once, when the device is made.
  void CreateShaders(ID3D11Device& device);
  // Whenever the output is made anew: viewports, buffers, blend states (the premultiplied one is bound once) and
  // sampler.
  void CreateState(ID3D11Device& device, ID3D11DeviceContext& context, std::uint32_t width, std::uint32_t height);

  [[nodiscard]] bool HasShaders() const { return layerVertexShader_ && layerPixelShader_; }
  // Whether all that a layer is drawn with could be made.
  [[nodiscard]] bool CanDraw() const {
    return HasShaders() && boundsBuffer_ && parametersBuffer_ && opaqueBlend_ && sampler_;
  }

  // Layers overwrite one another: compatibility.md, C43.
  void BindOpaqueBlend(ID3D11DeviceContext& context);
  // A view may be null: its eye is then drawn from no texture. Nothing is drawn without a target, or unless CanDraw:
  // what a draw call without shaders does is up to the graphics driver.
  void Draw(ID3D11DeviceContext& context, ID3D11RenderTargetView* target,
            const std::array<ID3D11ShaderResourceView*, 2>& eyes, const EyeBounds& bounds, std::uint8_t invertY);

 private:
  void CreateBuffers(ID3D11Device& device);
  void CreateBlendStates(ID3D11Device& device, ID3D11DeviceContext& context);
  void CreateSampler(ID3D11Device& device);
  void DrawEye(ID3D11DeviceContext& context, const D3D11_VIEWPORT& viewport, ID3D11ShaderResourceView* view,
               const TextureBounds& bounds);

  ComPtr<ID3D11VertexShader> layerVertexShader_;
  ComPtr<ID3D11PixelShader> layerPixelShader_;
  // For a mirror of the picture on the desktop, and never bound: compatibility.md, C46.
  ComPtr<ID3D11VertexShader> mirrorVertexShader_;
  ComPtr<ID3D11PixelShader> mirrorPixelShader_;
  std::array<D3D11_VIEWPORT, 2> viewports_{};
  ComPtr<ID3D11Buffer> boundsBuffer_;
  ComPtr<ID3D11Buffer> parametersBuffer_;
  ComPtr<ID3D11BlendState> premultipliedBlend_;
  ComPtr<ID3D11BlendState> opaqueBlend_;
  ComPtr<ID3D11SamplerState> sampler_;
};

}  // namespace ombrel
