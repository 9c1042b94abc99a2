#pragma once

#include <d3d11.h>

#include <cstdint>
#include <optional>
#include <span>

namespace bench {

// Calls that an observer can answer in place of Direct3D.
enum class DeviceCall {
  kCreateDevice,  // only from intercepted modules
  kCreateBuffer,
  kCreateTexture2D,
  kCreateShaderResourceView,
  kCreateRenderTargetView,
  kCreateVertexShader,
  kCreatePixelShader,
  kCreateBlendState,
  kCreateSamplerState,
  kOpenSharedResource,
  kGetDeviceRemovedReason,
  kMap,
  kGetSharedHandle,
  kQueryKeyedMutex,  // a shared texture is asked for the interface
  kAcquireSync,
  kReleaseSync,
};

// Sees the calls on a group's devices exactly as the caller made them, and can make them fail.
// Derive from it, override what a test needs, and hand it to SetObserver. Every method is called on the thread
// of the Direct3D call; pointers are valid during the call only. What this library calls for its own copies is
// not reported.
class DeviceObserver {
 public:
  virtual ~DeviceObserver() = default;

  // Asked before each of the calls above. A value is returned to the caller at once: the call has no effect and
  // its outputs are null or zero. Nothing lets the call go on.
  [[nodiscard]] virtual std::optional<HRESULT> Answer(DeviceCall) { return std::nullopt; }

  // Device calls that were not answered, before they run.
  virtual void OnCreateBuffer(const D3D11_BUFFER_DESC&) {}
  virtual void OnCreateTexture2D(const D3D11_TEXTURE2D_DESC&) {}
  virtual void OnCreateShaderResourceView(ID3D11Resource*, const D3D11_SHADER_RESOURCE_VIEW_DESC*) {}
  virtual void OnCreateRenderTargetView(ID3D11Resource*, const D3D11_RENDER_TARGET_VIEW_DESC*) {}
  virtual void OnCreateBlendState(const D3D11_BLEND_DESC&) {}
  virtual void OnCreateSamplerState(const D3D11_SAMPLER_DESC&) {}

  // Sharing, with its result, after it ran or was answered. A handle above 32 bits is shown cut off.
  virtual void OnOpenSharedResource(std::uint32_t /*handle*/, HRESULT) {}
  virtual void OnAcquireSync(std::uint32_t /*handle*/, UINT64 /*key*/, DWORD /*timeoutMs*/, HRESULT) {}
  virtual void OnReleaseSync(std::uint32_t /*handle*/, UINT64 /*key*/, HRESULT) {}

  // A draw or a copy is about to read a shared texture, held or not.
  virtual void OnReadSharedTexture(std::uint32_t /*handle*/) {}

  // Context calls, before they run.
  virtual void OnOMSetRenderTargets(std::span<ID3D11RenderTargetView* const>, ID3D11DepthStencilView*) {}
  virtual void OnOMSetBlendState(ID3D11BlendState*, const FLOAT* /*factor, or null*/, UINT /*sampleMask*/) {}
  virtual void OnRSSetViewports(std::span<const D3D11_VIEWPORT>) {}
  virtual void OnIASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY) {}
  virtual void OnPSSetShaderResources(UINT /*slot*/, std::span<ID3D11ShaderResourceView* const>) {}
  virtual void OnPSSetSamplers(UINT /*slot*/, std::span<ID3D11SamplerState* const>) {}
  virtual void OnMap(ID3D11Resource*, D3D11_MAP) {}
  virtual void OnDraw(UINT /*vertexCount*/, UINT /*firstVertex*/) {}
  virtual void OnCopyResource(ID3D11Resource* /*target*/, ID3D11Resource* /*source*/) {}
  virtual void OnClearRenderTargetView(ID3D11RenderTargetView*, std::span<const FLOAT, 4>) {}
  virtual void OnFlush() {}
};

}  // namespace bench
