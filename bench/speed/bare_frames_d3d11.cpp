#include "bare_frames.h"

#include <cstring>
#include <stdexcept>

namespace bench::speed {
namespace {

using Microsoft::WRL::ComPtr;

constexpr UINT64 kKey = 0;
constexpr DWORD kTimeoutMs = 16;

ComPtr<ID3D11Texture2D> Open(ID3D11Device& device, HANDLE handle) {
  ComPtr<ID3D11Resource> resource;
  ComPtr<ID3D11Texture2D> texture;
  if (SUCCEEDED(device.OpenSharedResource(handle, IID_PPV_ARGS(&resource)))) resource.As(&texture);
  return texture;
}

}  // namespace

Output OutputOf(ID3D11Resource& texture) {
  Output output;
  if (FAILED(texture.QueryInterface(IID_PPV_ARGS(&output.texture))) || FAILED(output.texture.As(&output.mutex))) {
    throw std::runtime_error("the driver's output has no keyed mutex");
  }
  return output;
}

BareLayerFrames::BareLayerFrames(ID3D11DeviceContext& context) : context_(&context) {
  context.GetDevice(&device_);
  context.VSGetShader(&vertexShader_, nullptr, nullptr);
  context.PSGetShader(&pixelShader_, nullptr, nullptr);
  context.PSGetSamplers(0, 1, &sampler_);
  std::array<FLOAT, 4> factor{};
  UINT mask = 0;
  context.OMGetBlendState(&blend_, factor.data(), &mask);
  context.VSGetConstantBuffers(0, 1, &bounds_);
  context.PSGetConstantBuffers(1, 1, &parameters_);
  context.PSGetShaderResources(0, 1, &source_);
  UINT count = 1;
  context.RSGetViewports(&count, &viewports_[1]);
  viewports_[0] = viewports_[1];
  viewports_[0].TopLeftX = 0;
  if (!vertexShader_ || !pixelShader_ || !sampler_ || !blend_ || !bounds_ || !parameters_ || !source_) {
    throw std::runtime_error("the driver has not drawn a layer");
  }
}

void BareLayerFrames::NoteHeldOutput() {
  held_ = 1 - held_;
  ComPtr<ID3D11RenderTargetView> view;
  context_->OMGetRenderTargets(1, &view, nullptr);
  ComPtr<ID3D11Resource> texture;
  if (view) view->GetResource(&texture);
  if (!texture) throw std::runtime_error("the driver has no output bound");
  outputs_[held_] = OutputOf(*texture.Get());
  outputs_[held_].view = view;
}

void BareLayerFrames::Run(HANDLE syncTexture, int layers) {
  const ComPtr<ID3D11Texture2D> sync = Open(*device_.Get(), syncTexture);
  ComPtr<IDXGIKeyedMutex> syncMutex;
  if (!sync || FAILED(sync.As(&syncMutex)) || syncMutex->AcquireSync(kKey, kTimeoutMs) != S_OK) {
    throw std::runtime_error("the baseline cannot have the sync texture");
  }
  context_->OMSetBlendState(blend_.Get(), nullptr, 0xFFFFFFFF);
  for (int layer = 0; layer < layers; ++layer) DrawLayer();
  outputs_[held_].mutex->ReleaseSync(kKey);
  held_ = 1 - held_;
  outputs_[held_].mutex->AcquireSync(kKey, kTimeoutMs);
  constexpr std::array<float, 4> kBlack{0.0F, 0.0F, 0.0F, 1.0F};
  context_->OMSetRenderTargets(1, outputs_[held_].view.GetAddressOf(), nullptr);
  context_->ClearRenderTargetView(outputs_[held_].view.Get(), kBlack.data());
  syncMutex->ReleaseSync(kKey);
}

void BareLayerFrames::DrawLayer() {
  context_->OMSetRenderTargets(1, outputs_[held_].view.GetAddressOf(), nullptr);
  context_->VSSetShader(vertexShader_.Get(), nullptr, 0);
  context_->PSSetShader(pixelShader_.Get(), nullptr, 0);
  context_->PSSetSamplers(0, 1, sampler_.GetAddressOf());
  Fill(parameters_.Get(), {});
  context_->PSSetConstantBuffers(1, 1, parameters_.GetAddressOf());
  for (const D3D11_VIEWPORT& viewport : viewports_) {
    context_->RSSetViewports(1, &viewport);
    Fill(bounds_.Get(), {0.0F, 0.0F, 1.0F, 1.0F});
    context_->VSSetConstantBuffers(0, 1, bounds_.GetAddressOf());
    context_->PSSetShaderResources(0, 1, source_.GetAddressOf());
    context_->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    context_->Draw(3, 0);
  }
}

void BareLayerFrames::Fill(ID3D11Buffer* buffer, const std::array<float, 4>& content) {
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context_->Map(buffer, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped))) return;
  std::memcpy(mapped.pData, content.data(), sizeof(content));
  context_->Unmap(buffer, 0);
}

BareTextureFrames::BareTextureFrames(ID3D11DeviceContext& context, const std::array<Output, 2>& outputs)
    : context_(&context), outputs_(outputs) {
  context.GetDevice(&device_);
}

void BareTextureFrames::Run(HANDLE texture) {
  const ComPtr<ID3D11Texture2D> opened = Open(*device_.Get(), texture);
  ComPtr<IDXGIKeyedMutex> mutex;
  if (!opened || FAILED(opened.As(&mutex)) || mutex->AcquireSync(kKey, kTimeoutMs) != S_OK) {
    throw std::runtime_error("the baseline cannot have the runtime's texture");
  }
  context_->CopyResource(outputs_[held_].texture.Get(), opened.Get());
  mutex->ReleaseSync(kKey);
  outputs_[held_].mutex->ReleaseSync(kKey);
  held_ = 1 - held_;
  outputs_[held_].mutex->AcquireSync(kKey, kTimeoutMs);
}

}  // namespace bench::speed
