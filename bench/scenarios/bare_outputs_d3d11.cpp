#include "bare_outputs.h"

#include <cfloat>
#include <string_view>

#include "runtime/small_picture.h"
#include "scene_shaders.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace bench::scenarios {
namespace {

using Microsoft::WRL::ComPtr;

constexpr UINT kBufferBytes = 16;
// As large as the driver's are in the scenarios, and the layers: see DriverLife.
constexpr UINT kEyeWidth = kSmallEyeWidth, kEyeHeight = kSmallEyeHeight;
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
  RequireOk(CreateSharingDevice(&device_, &layer_.context), "making a device");
  MakeShaders();
  MakeSource();
  for (std::size_t eye = 0; eye < layer_.viewports.size(); ++eye) {
    layer_.viewports[eye] = {static_cast<FLOAT>(eye * kEyeWidth), 0, FLOAT{kEyeWidth}, FLOAT{kEyeHeight}, 0, 1};
  }
}

void BareOutputs::MakeShaders() {
  const auto vertex = CompileShader(kShaders, "VertexMain", "vs_4_0");
  const auto pixel = CompileShader(kShaders, "PixelMain", "ps_4_0");
  RequireOk(
      device_->CreateVertexShader(vertex->GetBufferPointer(), vertex->GetBufferSize(), nullptr, &layer_.vertexShader),
      "making a vertex shader");
  RequireOk(device_->CreatePixelShader(pixel->GetBufferPointer(), pixel->GetBufferSize(), nullptr, &layer_.pixelShader),
            "making a pixel shader");
}

void BareOutputs::MakeSource() {
  const auto desc = TextureDescription(kLayerWidth, kLayerHeight, DXGI_FORMAT_R8G8B8A8_UNORM);
  ComPtr<ID3D11Texture2D> texture;
  RequireOk(device_->CreateTexture2D(&desc, nullptr, &texture), "making a layer");
  RequireOk(device_->CreateShaderResourceView(texture.Get(), nullptr, &layer_.source), "making a layer's view");
}

bool BareOutputs::Make() {
  outputs_ = {};
  if (!MakeOutput(outputs_.outputs[0]) || !MakeOutput(outputs_.outputs[1])) return false;
  layer_.context->Flush();
  if (!MakeState() || outputs_.Acquire() != S_OK) return false;
  layer_.Clear(outputs_.Held());
  return true;
}

bool BareOutputs::MakeOutput(Output& output) {
  const auto desc =
      TextureDescription(2 * kEyeWidth, kEyeHeight, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  return device_->CreateTexture2D(&desc, nullptr, &output.texture) == S_OK &&
         output.texture.As(&output.mutex) == S_OK &&
         device_->CreateRenderTargetView(output.texture.Get(), nullptr, &output.view) == S_OK;
}

bool BareOutputs::MakeState() {
  const CD3D11_BUFFER_DESC buffer(kBufferBytes, D3D11_BIND_CONSTANT_BUFFER, D3D11_USAGE_DYNAMIC,
                                  D3D11_CPU_ACCESS_WRITE);
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
  HRESULT result = device_->CreateBuffer(&buffer, nullptr, layer_.bounds.ReleaseAndGetAddressOf());
  if (result == S_OK) result = device_->CreateBuffer(&buffer, nullptr, layer_.parameters.ReleaseAndGetAddressOf());
  if (result == S_OK) result = device_->CreateBlendState(&blend, unused_.ReleaseAndGetAddressOf());
  blend.RenderTarget[0].BlendEnable = FALSE;
  if (result == S_OK) result = device_->CreateBlendState(&blend, layer_.blend.ReleaseAndGetAddressOf());
  if (result == S_OK) result = device_->CreateSamplerState(&sampler, layer_.sampler.ReleaseAndGetAddressOf());
  layer_.context->OMSetBlendState(unused_.Get(), nullptr, 0xFFFFFFFF);
  return result == S_OK;
}

void BareOutputs::HandOver() {
  layer_.Begin();
  layer_.Draw(outputs_.Held());
  // While the companion reads the other, it is not to be had: the next frame then goes nowhere, as the driver's does.
  outputs_.PassOn();
  layer_.Clear(outputs_.Held());
}

std::uint32_t BareOutputs::SharedHandle(std::size_t index) const {
  return bench::SharedHandle(outputs_.outputs[index].texture.Get());
}

}  // namespace bench::scenarios
