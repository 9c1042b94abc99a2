#include "scene_renderer.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "runtime/keyed_texture.h"
#include "scene_shaders.h"
#include "scene_texture.h"

namespace bench {
namespace {

struct CameraConstants {
  vr::HmdMatrix44_t clipFromWorld;
  float tintExponent;
  float padding[3];
};

vr::HmdMatrix44_t ClipFromWorld(const vr::HmdMatrix44_t& projection, const runtime::PoseMatrix& eyeFromWorld) {
  vr::HmdMatrix44_t clip{};
  runtime::MultiplyRows(projection.m, eyeFromWorld, clip.m);
  return clip;
}

}  // namespace

SceneRenderer::SceneRenderer(Microsoft::WRL::ComPtr<ID3D11Device> device,
                             Microsoft::WRL::ComPtr<ID3D11DeviceContext> context)
    : device_(std::move(device)), context_(std::move(context)) {
  CreateShaders();
  CreateStates();
  linearSurfaces_ = CreateSurfaces(false);
  encodedSurfaces_ = CreateSurfaces(true);
  const Mesh room = BuildRoom();
  room_ = CreateVertices(room);
  roomVertices_ = static_cast<std::uint32_t>(room.size());
}

void SceneRenderer::CreateShaders() {
  const auto vertexCode = CompileSceneVertexShader();
  const auto pixelCode = CompileScenePixelShader();
  RequireOk(
      device_->CreateVertexShader(vertexCode->GetBufferPointer(), vertexCode->GetBufferSize(), nullptr, &vertexShader_),
      "making the vertex shader");
  RequireOk(
      device_->CreatePixelShader(pixelCode->GetBufferPointer(), pixelCode->GetBufferSize(), nullptr, &pixelShader_),
      "making the pixel shader");
  const D3D11_INPUT_ELEMENT_DESC elements[] = {
      {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, offsetof(SceneVertex, position), D3D11_INPUT_PER_VERTEX_DATA, 0},
      {"TEXCOORD", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, offsetof(SceneVertex, texture), D3D11_INPUT_PER_VERTEX_DATA, 0},
      {"COLOR", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, offsetof(SceneVertex, tint), D3D11_INPUT_PER_VERTEX_DATA, 0}};
  RequireOk(device_->CreateInputLayout(elements, static_cast<UINT>(std::size(elements)), vertexCode->GetBufferPointer(),
                                       vertexCode->GetBufferSize(), &layout_),
            "making the vertex layout");
}

void SceneRenderer::CreateStates() {
  D3D11_BUFFER_DESC camera{};
  camera.ByteWidth = sizeof(CameraConstants);
  camera.Usage = D3D11_USAGE_DYNAMIC;
  camera.BindFlags = D3D11_BIND_CONSTANT_BUFFER;
  camera.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
  RequireOk(device_->CreateBuffer(&camera, nullptr, &camera_), "making the camera buffer");

  D3D11_SAMPLER_DESC sampler{};
  sampler.Filter = D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT;
  sampler.AddressU = sampler.AddressV = sampler.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
  sampler.ComparisonFunc = D3D11_COMPARISON_NEVER;
  sampler.MaxLOD = D3D11_FLOAT32_MAX;
  RequireOk(device_->CreateSamplerState(&sampler, &sampler_), "making the sampler");

  D3D11_RASTERIZER_DESC rasterizer{};
  rasterizer.FillMode = D3D11_FILL_SOLID;
  rasterizer.CullMode = D3D11_CULL_NONE;
  rasterizer.DepthClipEnable = TRUE;
  RequireOk(device_->CreateRasterizerState(&rasterizer, &rasterizer_), "making the rasterizer state");

  D3D11_DEPTH_STENCIL_DESC depth{};
  depth.DepthEnable = TRUE;
  depth.DepthWriteMask = D3D11_DEPTH_WRITE_MASK_ALL;
  depth.DepthFunc = D3D11_COMPARISON_LESS;
  RequireOk(device_->CreateDepthStencilState(&depth, &depthState_), "making the depth state");
}

Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> SceneRenderer::CreateSurfaces(bool gammaEncoded) {
  constexpr auto kSlices = static_cast<std::size_t>(Surface::Count);
  std::vector<std::vector<Picture>> slices;
  std::vector<D3D11_SUBRESOURCE_DATA> data;
  for (std::size_t slice = 0; slice < kSlices; ++slice) {
    slices.push_back(PaintSurface(static_cast<Surface>(slice), gammaEncoded));
    for (const Picture& picture : slices.back()) {
      data.push_back({picture.bytes.data(), 4 * picture.size, 0});
    }
  }
  D3D11_TEXTURE2D_DESC description{};
  description.Width = description.Height = slices.front().front().size;
  description.MipLevels = static_cast<UINT>(slices.front().size());
  description.ArraySize = static_cast<UINT>(kSlices);
  description.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
  description.SampleDesc.Count = 1;
  description.Usage = D3D11_USAGE_IMMUTABLE;
  description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
  RequireOk(device_->CreateTexture2D(&description, data.data(), &texture), "making the scene's texture");
  Microsoft::WRL::ComPtr<ID3D11ShaderResourceView> view;
  RequireOk(device_->CreateShaderResourceView(texture.Get(), nullptr, &view), "making the scene's texture view");
  return view;
}

Microsoft::WRL::ComPtr<ID3D11Buffer> SceneRenderer::CreateVertices(const Mesh& mesh) {
  D3D11_BUFFER_DESC description{};
  description.ByteWidth = static_cast<UINT>(mesh.size() * sizeof(SceneVertex));
  description.Usage = D3D11_USAGE_IMMUTABLE;
  description.BindFlags = D3D11_BIND_VERTEX_BUFFER;
  const D3D11_SUBRESOURCE_DATA data = {mesh.data(), 0, 0};
  Microsoft::WRL::ComPtr<ID3D11Buffer> buffer;
  RequireOk(device_->CreateBuffer(&description, &data, &buffer), "making a vertex buffer");
  return buffer;
}

void SceneRenderer::CreateDepth(std::uint32_t width, std::uint32_t height) {
  D3D11_TEXTURE2D_DESC description{};
  description.Width = width;
  description.Height = height;
  description.MipLevels = 1;
  description.ArraySize = 1;
  description.Format = DXGI_FORMAT_D24_UNORM_S8_UINT;
  description.SampleDesc.Count = 1;
  description.Usage = D3D11_USAGE_DEFAULT;
  description.BindFlags = D3D11_BIND_DEPTH_STENCIL;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture;
  RequireOk(device_->CreateTexture2D(&description, nullptr, &texture), "making the depth buffer");
  depth_.Reset();
  RequireOk(device_->CreateDepthStencilView(texture.Get(), nullptr, &depth_), "making the depth buffer's view");
  depthWidth_ = width;
  depthHeight_ = height;
}

void SceneRenderer::WriteCamera(const EyeView& view) {
  CameraConstants constants{};
  constants.clipFromWorld = ClipFromWorld(view.projection, runtime::InvertRigid(view.worldFromEye));
  constants.tintExponent = view.gammaEncoded ? 1.0F : 2.2F;
  D3D11_MAPPED_SUBRESOURCE mapped{};
  RequireOk(context_->Map(camera_.Get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped), "mapping the camera buffer");
  std::memcpy(mapped.pData, &constants, sizeof constants);
  context_->Unmap(camera_.Get(), 0);
}

void SceneRenderer::BindPipeline(const EyeView& view) {
  ID3D11RenderTargetView* target = view.target;
  context_->OMSetRenderTargets(1, &target, depth_.Get());
  context_->OMSetDepthStencilState(depthState_.Get(), 0);
  context_->RSSetState(rasterizer_.Get());
  context_->RSSetViewports(1, &view.viewport);
  context_->IASetInputLayout(layout_.Get());
  context_->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
  context_->VSSetShader(vertexShader_.Get(), nullptr, 0);
  context_->VSSetConstantBuffers(0, 1, camera_.GetAddressOf());
  context_->PSSetShader(pixelShader_.Get(), nullptr, 0);
  context_->PSSetShaderResources(0, 1, (view.gammaEncoded ? encodedSurfaces_ : linearSurfaces_).GetAddressOf());
  context_->PSSetSamplers(0, 1, sampler_.GetAddressOf());
}

void SceneRenderer::Draw(ID3D11Buffer* vertices, std::uint32_t count) {
  const UINT stride = sizeof(SceneVertex);
  const UINT offset = 0;
  context_->IASetVertexBuffers(0, 1, &vertices, &stride, &offset);
  context_->Draw(count, 0);
}

void SceneRenderer::PaintEye(const EyeView& view) {
  if (depthWidth_ != view.targetWidth || depthHeight_ != view.targetHeight) {
    CreateDepth(view.targetWidth, view.targetHeight);
  }
  if (view.eye == vr::Eye_Left) {
    const Mesh moving = movingParts_ ? movingParts_() : Mesh();
    movingVertices_ = static_cast<std::uint32_t>(moving.size());
    moving_ = moving.empty() ? nullptr : CreateVertices(moving);
  }
  WriteCamera(view);
  BindPipeline(view);
  context_->ClearDepthStencilView(depth_.Get(), D3D11_CLEAR_DEPTH, 1.0F, 0);
  Draw(room_.Get(), roomVertices_);
  if (movingVertices_ != 0) {
    Draw(moving_.Get(), movingVertices_);
  }
  // The target is somebody else's texture next: it must not stay bound.
  context_->OMSetRenderTargets(0, nullptr, nullptr);
}

}  // namespace bench
