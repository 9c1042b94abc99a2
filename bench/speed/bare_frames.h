#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <array>
#include <cstddef>

namespace bench::speed {

// An output texture of the driver's, as its device sees it.
struct Output {
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
  Microsoft::WRL::ComPtr<IDXGIKeyedMutex> mutex;
  Microsoft::WRL::ComPtr<ID3D11RenderTargetView> view;  // only where layers are drawn
};

// The Direct3D calls of one frame made of layers and no others, on the driver's own device and with its own objects:
// they are read back from its context, as a frame of one texture for both eyes left them bound. The driver must not be
// handing a frame over meanwhile. One thread.
class BareLayerFrames {
 public:
  explicit BareLayerFrames(ID3D11DeviceContext& context);

  // To be called after each of two frames of the driver: notes the output that it then holds.
  void NoteHeldOutput();
  // The output that the driver holds is another one after each frame, so that their number must be even.
  void Run(HANDLE syncTexture, int layers);

 private:
  void DrawLayer();
  void Fill(ID3D11Buffer* buffer, const std::array<float, 4>& content);

  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11VertexShader> vertexShader_;
  Microsoft::WRL::ComPtr<ID3D11PixelShader> pixelShader_;
  Microsoft::WRL::ComPtr<ID3D11SamplerState> sampler_;
  Microsoft::WRL::ComPtr<ID3D11BlendState> blend_;
  Microsoft::WRL::ComPtr<ID3D11Buffer> bounds_, parameters_;
  Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> source_;
  std::array<D3D11_VIEWPORT, 2> viewports_{};
  std::array<Output, 2> outputs_;
  std::size_t held_ = 1;
};

// The same of a frame that is one copy.
class BareTextureFrames {
 public:
  // `outputs`: the one that the driver holds comes first.
  BareTextureFrames(ID3D11DeviceContext& context, const std::array<Output, 2>& outputs);
  void Run(HANDLE texture);

 private:
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  std::array<Output, 2> outputs_;
  std::size_t held_ = 0;
};

// Throws std::runtime_error when it has no keyed mutex.
[[nodiscard]] Output OutputOf(ID3D11Resource& texture);

}  // namespace bench::speed
