#include "bare/frame_calls.h"

#include <cstring>

namespace bench {
namespace {

constexpr UINT64 kKey = 0;
constexpr DWORD kTimeoutMs = 16;

}  // namespace

HRESULT OutputPair::Acquire() const { return outputs[held].mutex->AcquireSync(kKey, kTimeoutMs); }

void OutputPair::PassOn() {
  outputs[held].mutex->ReleaseSync(kKey);
  held = 1 - held;
  static_cast<void>(Acquire());
}

void LayerCalls::Begin() const { context->OMSetBlendState(blend.Get(), nullptr, 0xFFFFFFFF); }

void LayerCalls::Draw(const Output& output) const {
  context->OMSetRenderTargets(1, output.view.GetAddressOf(), nullptr);
  context->VSSetShader(vertexShader.Get(), nullptr, 0);
  context->PSSetShader(pixelShader.Get(), nullptr, 0);
  context->PSSetSamplers(0, 1, sampler.GetAddressOf());
  Fill(parameters.Get(), {});
  context->PSSetConstantBuffers(1, 1, parameters.GetAddressOf());
  for (const D3D11_VIEWPORT& viewport : viewports) {
    context->RSSetViewports(1, &viewport);
    Fill(bounds.Get(), {0.0F, 0.0F, 1.0F, 1.0F});
    context->VSSetConstantBuffers(0, 1, bounds.GetAddressOf());
    context->PSSetShaderResources(0, 1, source.GetAddressOf());
    context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    context->Draw(3, 0);
  }
}

void LayerCalls::Fill(ID3D11Buffer* buffer, const std::array<float, 4>& content) const {
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context->Map(buffer, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped))) return;
  std::memcpy(mapped.pData, content.data(), sizeof(content));
  context->Unmap(buffer, 0);
}

void LayerCalls::Clear(const Output& output) const {
  constexpr std::array<float, 4> kBlack{0.0F, 0.0F, 0.0F, 1.0F};
  context->OMSetRenderTargets(1, output.view.GetAddressOf(), nullptr);
  context->ClearRenderTargetView(output.view.Get(), kBlack.data());
}

}  // namespace bench
