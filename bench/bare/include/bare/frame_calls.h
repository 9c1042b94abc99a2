#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <array>
#include <cstddef>

namespace bench {

// One of a driver's output textures, as its own device sees it.
struct Output {
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
  Microsoft::WRL::ComPtr<IDXGIKeyedMutex> mutex;
  Microsoft::WRL::ComPtr<ID3D11RenderTargetView> view;  // only where layers are drawn
};

// The driver's double buffering: it holds one output while the companion may read the other.
struct OutputPair {
  std::array<Output, 2> outputs;
  std::size_t held = 0;

  [[nodiscard]] Output& Held() { return outputs[held]; }
  // The held output's keyed mutex, within a frame period.
  HRESULT Acquire() const;
  // Gives the held output away and acquires the other, unless the companion is still reading that.
  void PassOn();
};

// The Direct3D calls of a layer, and no others, with the objects that a driver draws layers with. One thread.
struct LayerCalls {
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context;
  Microsoft::WRL::ComPtr<ID3D11VertexShader> vertexShader;
  Microsoft::WRL::ComPtr<ID3D11PixelShader> pixelShader;
  Microsoft::WRL::ComPtr<ID3D11SamplerState> sampler;
  Microsoft::WRL::ComPtr<ID3D11BlendState> blend;
  Microsoft::WRL::ComPtr<ID3D11Buffer> bounds, parameters;
  Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> source;  // of both eyes
  std::array<D3D11_VIEWPORT, 2> viewports{};

  void Begin() const;
  void Draw(const Output& output) const;
  // To opaque black.
  void Clear(const Output& output) const;

 private:
  void Fill(ID3D11Buffer* buffer, const std::array<float, 4>& content) const;
};

}  // namespace bench
