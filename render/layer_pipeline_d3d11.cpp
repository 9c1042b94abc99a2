#include "layer_pipeline_d3d11.h"

#include <cfloat>
#include <cstring>

#include "render/output_rules.h"
#include "shaders/shader_bytecode.h"

namespace ombrel {
namespace {

constexpr UINT kBufferSize = 16;
constexpr UINT kBoundsSlot = 0;      // vertex shader
constexpr UINT kParametersSlot = 1;  // pixel shader

// The pixel shader's Parameters.
struct LayerParameters {
  std::int32_t invertY;
  std::array<float, 3> pad;
};
static_assert(sizeof(LayerParameters) == kBufferSize && sizeof(TextureBounds) == kBufferSize);

template <typename Content>
void Fill(ID3D11DeviceContext& context, ID3D11Buffer* buffer, const Content& content) {
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context.Map(buffer, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped))) return;
  std::memcpy(mapped.pData, &content, sizeof(content));
  context.Unmap(buffer, 0);
}

}  // namespace

void LayerPipeline::CreateShaders(ID3D11Device& device) {
  const auto mirrorVs = shaders::MirrorVertexShader(), layerVs = shaders::LayerVertexShader();
  const auto mirrorPs = shaders::MirrorPixelShader(), layerPs = shaders::LayerPixelShader();
  device.CreateVertexShader(mirrorVs.data(), mirrorVs.size(), nullptr, mirrorVertexShader_.ReleaseAndGetAddressOf());
  device.CreatePixelShader(mirrorPs.data(), mirrorPs.size(), nullptr, mirrorPixelShader_.ReleaseAndGetAddressOf());
  device.CreateVertexShader(layerVs.data(), layerVs.size(), nullptr, layerVertexShader_.ReleaseAndGetAddressOf());
  device.CreatePixelShader(layerPs.data(), layerPs.size(), nullptr, layerPixelShader_.ReleaseAndGetAddressOf());
}

void LayerPipeline::CreateState(ID3D11Device& device, ID3D11DeviceContext& context, std::uint32_t width,
                                std::uint32_t height) {
  const auto eyes = EyeViewports(width, height);
  for (std::size_t eye = 0; eye < eyes.size(); ++eye) {
    viewports_[eye] = {eyes[eye].x, 0.0F, eyes[eye].width, eyes[eye].height, 0.0F, 1.0F};
  }
  CreateBuffers(device);
  CreateBlendStates(device, context);
  CreateSampler(device);
}

void LayerPipeline::CreateBuffers(ID3D11Device& device) {
  const D3D11_BUFFER_DESC desc{.ByteWidth = kBufferSize,
                               .Usage = D3D11_USAGE_DYNAMIC,
                               .BindFlags = D3D11_BIND_CONSTANT_BUFFER,
                               .CPUAccessFlags = D3D11_CPU_ACCESS_WRITE,
                               .MiscFlags = 0,
                               .StructureByteStride = 0};
  device.CreateBuffer(&desc, nullptr, boundsBuffer_.ReleaseAndGetAddressOf());
  device.CreateBuffer(&desc, nullptr, parametersBuffer_.ReleaseAndGetAddressOf());
}

void LayerPipeline::CreateBlendStates(ID3D11Device& device, ID3D11DeviceContext& context) {
  D3D11_BLEND_DESC desc{};
  desc.RenderTarget[0] = {.BlendEnable = TRUE,
                          .SrcBlend = D3D11_BLEND_ONE,
                          .DestBlend = D3D11_BLEND_INV_SRC_ALPHA,
                          .BlendOp = D3D11_BLEND_OP_ADD,
                          .SrcBlendAlpha = D3D11_BLEND_ONE,
                          .DestBlendAlpha = D3D11_BLEND_INV_SRC_ALPHA,
                          .BlendOpAlpha = D3D11_BLEND_OP_ADD,
                          .RenderTargetWriteMask = D3D11_COLOR_WRITE_ENABLE_ALL};
  device.CreateBlendState(&desc, premultipliedBlend_.ReleaseAndGetAddressOf());
  desc.RenderTarget[0].BlendEnable = FALSE;
  device.CreateBlendState(&desc, opaqueBlend_.ReleaseAndGetAddressOf());
  context.OMSetBlendState(premultipliedBlend_.Get(), nullptr, 0xFFFFFFFF);
}

void LayerPipeline::CreateSampler(ID3D11Device& device) {
  const D3D11_SAMPLER_DESC desc{.Filter = D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT,
                                .AddressU = D3D11_TEXTURE_ADDRESS_WRAP,
                                .AddressV = D3D11_TEXTURE_ADDRESS_WRAP,
                                .AddressW = D3D11_TEXTURE_ADDRESS_WRAP,
                                .MipLODBias = 0.0F,
                                .MaxAnisotropy = 16,
                                .ComparisonFunc = D3D11_COMPARISON_NEVER,
                                .BorderColor = {},
                                .MinLOD = 0.0F,
                                .MaxLOD = FLT_MAX};
  device.CreateSamplerState(&desc, sampler_.ReleaseAndGetAddressOf());
}

void LayerPipeline::BindOpaqueBlend(ID3D11DeviceContext& context) {
  context.OMSetBlendState(opaqueBlend_.Get(), nullptr, 0xFFFFFFFF);
}

void LayerPipeline::Draw(ID3D11DeviceContext& context, ID3D11RenderTargetView* target,
                         const std::array<ID3D11ShaderResourceView*, 2>& eyes, const EyeBounds& bounds,
                         std::uint8_t invertY) {
  if (target == nullptr || !CanDraw()) return;
  context.OMSetRenderTargets(1, &target, nullptr);
  context.VSSetShader(layerVertexShader_.Get(), nullptr, 0);
  context.PSSetShader(layerPixelShader_.Get(), nullptr, 0);
  context.PSSetSamplers(0, 1, sampler_.GetAddressOf());
  Fill(context, parametersBuffer_.Get(), LayerParameters{invertY, {}});
  context.PSSetConstantBuffers(kParametersSlot, 1, parametersBuffer_.GetAddressOf());
  for (std::size_t eye = 0; eye < eyes.size(); ++eye) DrawEye(context, viewports_[eye], eyes[eye], bounds[eye]);
}

void LayerPipeline::DrawEye(ID3D11DeviceContext& context, const D3D11_VIEWPORT& viewport,
                            ID3D11ShaderResourceView* view, const TextureBounds& bounds) {
  context.RSSetViewports(1, &viewport);
  Fill(context, boundsBuffer_.Get(), bounds);
  context.VSSetConstantBuffers(kBoundsSlot, 1, boundsBuffer_.GetAddressOf());
  context.PSSetShaderResources(0, 1, &view);
  context.IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
  context.Draw(3, 0);
}

}  // namespace ombrel
