#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <wrl/client.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace bench::scenarios {

// The Direct3D calls that shared outputs cost for each connection and each frame of layers, on a device of their own,
// and no more. The constructor throws std::runtime_error when it cannot make something. One thread at a time.
class BareOutputs {
 public:
  BareOutputs();

  // Two new textures in the place of those before, and what is made anew beside them. Output 0 is held then. False when
  // Direct3D refuses something.
  [[nodiscard]] bool Make();
  // Draws a layer into the held output, gives it away, and takes and clears the other one.
  void HandOver();

  [[nodiscard]] std::size_t Held() const { return held_; }
  // As they are announced.
  [[nodiscard]] std::uint32_t SharedHandle(std::size_t index) const;

 private:
  struct Output {
    Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
    Microsoft::WRL::ComPtr<IDXGIKeyedMutex> mutex;
    Microsoft::WRL::ComPtr<ID3D11RenderTargetView> view;
  };
  void MakeShaders();
  void MakeSource();
  [[nodiscard]] bool MakeOutput(Output& output);
  [[nodiscard]] bool MakeState();
  void DrawLayer();
  void Fill(ID3D11Buffer* buffer, const std::array<float, 4>& content);
  void Clear();

  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  Microsoft::WRL::ComPtr<ID3D11VertexShader> vertexShader_;
  Microsoft::WRL::ComPtr<ID3D11PixelShader> pixelShader_;
  Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> source_;
  std::array<Output, 2> outputs_;
  Microsoft::WRL::ComPtr<ID3D11Buffer> bounds_, parameters_;
  Microsoft::WRL::ComPtr<ID3D11BlendState> premultiplied_, opaque_;
  Microsoft::WRL::ComPtr<ID3D11SamplerState> sampler_;
  std::size_t held_ = 0;
};

}  // namespace bench::scenarios
