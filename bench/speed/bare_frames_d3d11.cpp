#include "bare_frames.h"

#include <stdexcept>

namespace bench::speed {
namespace {

using Microsoft::WRL::ComPtr;

constexpr UINT64 kKey = 0;
constexpr DWORD kTimeoutMs = 16;

// The runtime's texture of that handle, with its keyed mutex.
class HeldTexture {
 public:
  HeldTexture(ID3D11Device& device, HANDLE handle) {
    ComPtr<ID3D11Resource> resource;
    if (FAILED(device.OpenSharedResource(handle, IID_PPV_ARGS(&resource))) || FAILED(resource.As(&texture_)) ||
        FAILED(texture_.As(&mutex_)) || mutex_->AcquireSync(kKey, kTimeoutMs) != S_OK) {
      throw std::runtime_error("the baseline cannot have the runtime's texture");
    }
  }
  [[nodiscard]] ID3D11Texture2D* Texture() const { return texture_.Get(); }
  void Release() const { mutex_->ReleaseSync(kKey); }

 private:
  ComPtr<ID3D11Texture2D> texture_;
  ComPtr<IDXGIKeyedMutex> mutex_;
};

}  // namespace

Output OutputOf(ID3D11Resource& texture) {
  Output output;
  if (FAILED(texture.QueryInterface(IID_PPV_ARGS(&output.texture))) || FAILED(output.texture.As(&output.mutex))) {
    throw std::runtime_error("the driver's output has no keyed mutex");
  }
  return output;
}

BareLayerFrames::BareLayerFrames(ID3D11DeviceContext& context) {
  context.GetDevice(&device_);
  layer_.context = &context;
  context.VSGetShader(&layer_.vertexShader, nullptr, nullptr);
  context.PSGetShader(&layer_.pixelShader, nullptr, nullptr);
  context.PSGetSamplers(0, 1, &layer_.sampler);
  std::array<FLOAT, 4> factor{};
  UINT mask = 0;
  context.OMGetBlendState(&layer_.blend, factor.data(), &mask);
  context.VSGetConstantBuffers(0, 1, &layer_.bounds);
  context.PSGetConstantBuffers(1, 1, &layer_.parameters);
  context.PSGetShaderResources(0, 1, &layer_.source);
  UINT count = 1;
  context.RSGetViewports(&count, &layer_.viewports[1]);
  layer_.viewports[0] = layer_.viewports[1];
  layer_.viewports[0].TopLeftX = 0;
  if (!layer_.vertexShader || !layer_.pixelShader || !layer_.sampler || !layer_.blend || !layer_.bounds ||
      !layer_.parameters || !layer_.source) {
    throw std::runtime_error("the driver has not drawn a layer");
  }
}

void BareLayerFrames::NoteHeldOutput() {
  outputs_.held = 1 - outputs_.held;
  ComPtr<ID3D11RenderTargetView> view;
  layer_.context->OMGetRenderTargets(1, &view, nullptr);
  ComPtr<ID3D11Resource> texture;
  if (view) view->GetResource(&texture);
  if (!texture) throw std::runtime_error("the driver has no output bound");
  outputs_.Held() = OutputOf(*texture.Get());
  outputs_.Held().view = view;
}

void BareLayerFrames::Run(HANDLE syncTexture, int layers) {
  const HeldTexture sync(*device_.Get(), syncTexture);
  layer_.Begin();
  for (int layer = 0; layer < layers; ++layer) layer_.Draw(outputs_.Held());
  outputs_.PassOn();
  layer_.Clear(outputs_.Held());
  sync.Release();
}

BareTextureFrames::BareTextureFrames(ID3D11DeviceContext& context, const std::array<Output, 2>& outputs)
    : context_(&context), outputs_{.outputs = outputs, .held = 0} {
  context.GetDevice(&device_);
}

void BareTextureFrames::Run(HANDLE texture) {
  const HeldTexture opened(*device_.Get(), texture);
  context_->CopyResource(outputs_.Held().texture.Get(), opened.Texture());
  opened.Release();
  outputs_.PassOn();
}

}  // namespace bench::speed
