#include "bare_outputs.h"

#include <cfloat>
#include <cstring>
#include <string_view>

#include "scene_shaders.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace bench::scenarios {
namespace {

using Microsoft::WRL::ComPtr;

constexpr UINT64 kKey = 0;
constexpr DWORD kTimeoutMs = 16;
constexpr UINT kBufferBytes = 16;
// As large as the driver's are in the scenarios, and the layers: see DriverLife.
constexpr UINT kEyeWidth = 500, kHeight = 600;
constexpr UINT kLayerWidth = 32, kLayerHeight = 24;

constexpr std::string_view kShaders = R"(
cbuffer Bounds : register(b0) { float4 bounds; };
cbuffer Parameters : register(b1) { float4 parameters; };
Texture2D source : register(t0);
SamplerState linearSampler : register(s0);
struct Corner { float4 position : SV_POSITION; float2 place : TEXCOORD0; };

Corner VertexMain(uint id : SV_VertexID) {
  Corner corner;
  corner.place = float2((id << 1) & 2, id & 2);
  corner.position = float4(corner.place * float2(2, -2) + float2(-1, 1), 0, 1);
  corner.place = bounds.xy + (bounds.zw - bounds.xy) * corner.place;
  return corner;
}

float4 PixelMain(Corner corner) : SV_TARGET {
  return float4(pow(abs(source.Sample(linearSampler, corner.place).rgb + parameters.rgb), 1 / 2.2), 1);
}
)";

}  // namespace

BareOutputs::BareOutputs() {
  RequireOk(CreateSharingDevice(&device_, &context_), "making a device");
  MakeShaders();
  MakeSource();
}

void BareOutputs::MakeShaders() {
  const auto vertex = CompileShader(kShaders, "VertexMain", "vs_4_0");
  const auto pixel = CompileShader(kShaders, "PixelMain", "ps_4_0");
  RequireOk(device_->CreateVertexShader(vertex->GetBufferPointer(), vertex->GetBufferSize(), nullptr, &vertexShader_),
            "making a vertex shader");
  RequireOk(device_->CreatePixelShader(pixel->GetBufferPointer(), pixel->GetBufferSize(), nullptr, &pixelShader_),
            "making a pixel shader");
}

void BareOutputs::MakeSource() {
  const auto desc = TextureDescription(kLayerWidth, kLayerHeight, DXGI_FORMAT_R8G8B8A8_UNORM);
  ComPtr<ID3D11Texture2D> texture;
  RequireOk(device_->CreateTexture2D(&desc, nullptr, &texture), "making a layer");
  RequireOk(device_->CreateShaderResourceView(texture.Get(), nullptr, &source_), "making a layer's view");
}

bool BareOutputs::Make() {
  outputs_ = {};
  if (!MakeOutput(outputs_[0]) || !MakeOutput(outputs_[1])) return false;
  context_->Flush();
  held_ = 0;
  if (!MakeState() || outputs_[held_].mutex->AcquireSync(kKey, kTimeoutMs) != S_OK) return false;
  Clear();
  return true;
}

bool BareOutputs::MakeOutput(Output& output) {
  const auto desc =
      TextureDescription(2 * kEyeWidth, kHeight, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  return device_->CreateTexture2D(&desc, nullptr, &output.texture) == S_OK &&
         output.texture.As(&output.mutex) == S_OK &&
         device_->CreateRenderTargetView(output.texture.Get(), nullptr, &output.view) == S_OK;
}

bool BareOutputs::MakeState() {
  const D3D11_BUFFER_DESC buffer{.ByteWidth = kBufferBytes,
                                 .Usage = D3D11_USAGE_DYNAMIC,
                                 .BindFlags = D3D11_BIND_CONSTANT_BUFFER,
                                 .CPUAccessFlags = D3D11_CPU_ACCESS_WRITE,
                                 .MiscFlags = 0,
                                 .StructureByteStride = 0};
  D3D11_BLEND_DESC blend{};
  blend.RenderTarget[0] = {TRUE,
                           D3D11_BLEND_ONE,
                           D3D11_BLEND_INV_SRC_ALPHA,
                           D3D11_BLEND_OP_ADD,
                           D3D11_BLEND_ONE,
                           D3D11_BLEND_INV_SRC_ALPHA,
                           D3D11_BLEND_OP_ADD,
                           D3D11_COLOR_WRITE_ENABLE_ALL};
  D3D11_SAMPLER_DESC sampler{};
  sampler.Filter = D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT;
  sampler.AddressU = sampler.AddressV = sampler.AddressW = D3D11_TEXTURE_ADDRESS_WRAP;
  sampler.MaxAnisotropy = 16;
  sampler.ComparisonFunc = D3D11_COMPARISON_NEVER;
  sampler.MaxLOD = FLT_MAX;
  HRESULT result = device_->CreateBuffer(&buffer, nullptr, bounds_.ReleaseAndGetAddressOf());
  if (result == S_OK) result = device_->CreateBuffer(&buffer, nullptr, parameters_.ReleaseAndGetAddressOf());
  if (result == S_OK) result = device_->CreateBlendState(&blend, premultiplied_.ReleaseAndGetAddressOf());
  blend.RenderTarget[0].BlendEnable = FALSE;
  if (result == S_OK) result = device_->CreateBlendState(&blend, opaque_.ReleaseAndGetAddressOf());
  if (result == S_OK) result = device_->CreateSamplerState(&sampler, sampler_.ReleaseAndGetAddressOf());
  context_->OMSetBlendState(premultiplied_.Get(), nullptr, 0xFFFFFFFF);
  return result == S_OK;
}

void BareOutputs::HandOver() {
  context_->OMSetBlendState(opaque_.Get(), nullptr, 0xFFFFFFFF);
  DrawLayer();
  outputs_[held_].mutex->ReleaseSync(kKey);
  held_ = 1 - held_;
  // While the companion reads it, it is not to be had: the next frame then goes nowhere, as the driver's does.
  static_cast<void>(outputs_[held_].mutex->AcquireSync(kKey, kTimeoutMs));
  Clear();
}

void BareOutputs::DrawLayer() {
  context_->OMSetRenderTargets(1, outputs_[held_].view.GetAddressOf(), nullptr);
  context_->VSSetShader(vertexShader_.Get(), nullptr, 0);
  context_->PSSetShader(pixelShader_.Get(), nullptr, 0);
  context_->PSSetSamplers(0, 1, sampler_.GetAddressOf());
  Fill(parameters_.Get(), {});
  context_->PSSetConstantBuffers(1, 1, parameters_.GetAddressOf());
  for (UINT eye = 0; eye < 2; ++eye) {
    const auto left = static_cast<FLOAT>(eye * kEyeWidth);
    const D3D11_VIEWPORT viewport{left, 0.0F, FLOAT{kEyeWidth}, FLOAT{kHeight}, 0.0F, 1.0F};
    context_->RSSetViewports(1, &viewport);
    Fill(bounds_.Get(), {0.0F, 0.0F, 1.0F, 1.0F});
    context_->VSSetConstantBuffers(0, 1, bounds_.GetAddressOf());
    context_->PSSetShaderResources(0, 1, source_.GetAddressOf());
    context_->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    context_->Draw(3, 0);
  }
}

void BareOutputs::Fill(ID3D11Buffer* buffer, const std::array<float, 4>& content) {
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context_->Map(buffer, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped))) return;
  std::memcpy(mapped.pData, content.data(), sizeof(content));
  context_->Unmap(buffer, 0);
}

void BareOutputs::Clear() {
  constexpr std::array<float, 4> kBlack{0.0F, 0.0F, 0.0F, 1.0F};
  context_->OMSetRenderTargets(1, outputs_[held_].view.GetAddressOf(), nullptr);
  context_->ClearRenderTargetView(outputs_[held_].view.Get(), kBlack.data());
}

std::uint32_t BareOutputs::SharedHandle(std::size_t index) const {
  return bench::SharedHandle(outputs_[index].texture.Get());
}

}  // namespace bench::scenarios
