#pragma once

#include <cstdint>
#include <functional>

#include <d3d11.h>
#include <wrl/client.h>

#include "runtime/frame_painter.h"
#include "scene_mesh.h"

namespace bench {

/// Draws the room, and what moves in it, with Direct3D 11. All methods but the constructor run on the
/// compositor's thread; the device's context is used by nobody else meanwhile.
class SceneRenderer : public FramePainter {
 public:
  /// What moves: asked once per frame, before the left eye.
  using MovingParts = std::function<Mesh()>;

  /// Throws std::runtime_error if Direct3D or the shader compiler fails.
  SceneRenderer(Microsoft::WRL::ComPtr<ID3D11Device> device, Microsoft::WRL::ComPtr<ID3D11DeviceContext> context);

  void SetMovingParts(MovingParts parts) { movingParts_ = std::move(parts); }

  void PaintEye(const EyeView& view) override;

 private:
  void CreateShaders();
  void CreateStates();
  void CreateDepth(std::uint32_t width, std::uint32_t height);
  [[nodiscard]] Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> CreateSurfaces(bool gammaEncoded);
  [[nodiscard]] Microsoft::WRL::ComPtr<ID3D11Buffer> CreateVertices(const Mesh& mesh);
  void WriteCamera(const EyeView& view);
  void BindPipeline(const EyeView& view);
  void Draw(ID3D11Buffer* vertices, std::uint32_t count);

  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  Microsoft::WRL::ComPtr<ID3D11VertexShader> vertexShader_;
  Microsoft::WRL::ComPtr<ID3D11PixelShader> pixelShader_;
  Microsoft::WRL::ComPtr<ID3D11InputLayout> layout_;
  Microsoft::WRL::ComPtr<ID3D11Buffer> camera_;
  Microsoft::WRL::ComPtr<ID3D11SamplerState> sampler_;
  Microsoft::WRL::ComPtr<ID3D11RasterizerState> rasterizer_;
  Microsoft::WRL::ComPtr<ID3D11DepthStencilState> depthState_;
  Microsoft::WRL::ComPtr<ID3D11DepthStencilView> depth_;
  Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> linearSurfaces_;
  Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> encodedSurfaces_;
  Microsoft::WRL::ComPtr<ID3D11Buffer> room_;
  Microsoft::WRL::ComPtr<ID3D11Buffer> moving_;
  std::uint32_t roomVertices_ = 0;
  std::uint32_t movingVertices_ = 0;
  std::uint32_t depthWidth_ = 0;
  std::uint32_t depthHeight_ = 0;
  MovingParts movingParts_;
};

}  // namespace bench
