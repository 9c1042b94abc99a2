#include "device_hooks.h"

#include "caller.h"
#include "shared_surface.h"
#include "sharing/vtable_patch.h"
#include "texture_hooks.h"

#include <array>
#include <cstdint>

namespace bench {

namespace {

HRESULT STDMETHODCALLTYPE CreateBuffer(ID3D11Device* self, const D3D11_BUFFER_DESC* description,
                                       const D3D11_SUBRESOURCE_DATA* data, ID3D11Buffer** buffer) {
  const Caller caller(self);
  if (const auto answer = caller.Answer(DeviceCall::kCreateBuffer, buffer)) return *answer;
  if (description != nullptr) caller.Observer().OnCreateBuffer(*description);
  const HRESULT result = Original<&CreateBuffer>()(self, description, data, buffer);
  return caller.Count(result, buffer, &AtomicCounters::liveBuffers);
}

HRESULT STDMETHODCALLTYPE CreateTexture2D(ID3D11Device* self, const D3D11_TEXTURE2D_DESC* description,
                                          const D3D11_SUBRESOURCE_DATA* data, ID3D11Texture2D** texture) {
  const Caller caller(self);
  if (const auto answer = caller.Answer(DeviceCall::kCreateTexture2D, texture)) return *answer;
  if (description != nullptr) caller.Observer().OnCreateTexture2D(*description);
  const bool shared = caller.Device() != nullptr && description != nullptr && WantsSharing(*description);
  if (shared && texture != nullptr) *texture = nullptr;
  const HRESULT result = shared ? CreateSharedTexture(caller.Device(), self, *description, data, texture)
                                : Original<&CreateTexture2D>()(self, description, data, texture);
  return caller.Count(result, texture, &AtomicCounters::liveTextures);
}

template <DeviceCall kCall, auto kSeen, class View, class Description>
HRESULT STDMETHODCALLTYPE CreateView(ID3D11Device* self, ID3D11Resource* resource, const Description* description,
                                     View** view) {
  const Caller caller(self);
  if (const auto answer = caller.Answer(kCall, view)) return *answer;
  (caller.Observer().*kSeen)(resource, description);
  const HRESULT result = Original<&CreateView<kCall, kSeen, View, Description>>()(self, resource, description, view);
  return caller.Count(result, view, &AtomicCounters::liveViews);
}

template <DeviceCall kCall, class Shader>
HRESULT STDMETHODCALLTYPE CreateShader(ID3D11Device* self, const void* code, SIZE_T size, ID3D11ClassLinkage* linkage,
                                       Shader** shader) {
  const Caller caller(self);
  if (const auto answer = caller.Answer(kCall, shader)) return *answer;
  const HRESULT result = Original<&CreateShader<kCall, Shader>>()(self, code, size, linkage, shader);
  return caller.Count(result, shader, &AtomicCounters::liveShaders);
}

template <DeviceCall kCall, auto kSeen, class State, class Description>
HRESULT STDMETHODCALLTYPE CreateState(ID3D11Device* self, const Description* description, State** state) {
  const Caller caller(self);
  if (const auto answer = caller.Answer(kCall, state)) return *answer;
  if (description != nullptr) (caller.Observer().*kSeen)(*description);
  const HRESULT result = Original<&CreateState<kCall, kSeen, State, Description>>()(self, description, state);
  return caller.Count(result, state, &AtomicCounters::liveStates);
}

HRESULT Open(const Caller& caller, ID3D11Device* self, HANDLE handle, REFIID iid, void** resource) {
  if (resource == nullptr) return E_INVALIDARG;
  *resource = nullptr;
  if (const auto answer = caller.Observer().Answer(DeviceCall::kOpenSharedResource)) return *answer;
  const auto value = reinterpret_cast<std::uintptr_t>(handle);
  if (value > UINT32_MAX) return E_INVALIDARG;
  return OpenSharedTexture(caller.Device(), self, static_cast<std::uint32_t>(value), iid, resource);
}

HRESULT STDMETHODCALLTYPE OpenSharedResource(ID3D11Device* self, HANDLE handle, REFIID iid, void** resource) {
  const Caller caller(self);
  if (caller.Device() == nullptr) return Original<&OpenSharedResource>()(self, handle, iid, resource);
  const HRESULT result = Open(caller, self, handle, iid, resource);
  const auto shownHandle = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
  caller.Observer().OnOpenSharedResource(shownHandle, result);
  return result;
}

HRESULT STDMETHODCALLTYPE GetDeviceRemovedReason(ID3D11Device* self) {
  const auto answer = Caller(self).Observer().Answer(DeviceCall::kGetDeviceRemovedReason);
  return answer ? *answer : Original<&GetDeviceRemovedReason>()(self);
}

}  // namespace

bool PatchDevice(ID3D11Device* device) {
  static const std::array patches{
      Patch<&CreateBuffer>(3),
      Patch<&CreateTexture2D>(5),
      Patch<&CreateView<DeviceCall::kCreateShaderResourceView, &DeviceObserver::OnCreateShaderResourceView,
                        ID3D11ShaderResourceView, D3D11_SHADER_RESOURCE_VIEW_DESC>>(7),
      Patch<&CreateView<DeviceCall::kCreateRenderTargetView, &DeviceObserver::OnCreateRenderTargetView,
                        ID3D11RenderTargetView, D3D11_RENDER_TARGET_VIEW_DESC>>(9),
      Patch<&CreateShader<DeviceCall::kCreateVertexShader, ID3D11VertexShader>>(12),
      Patch<&CreateShader<DeviceCall::kCreatePixelShader, ID3D11PixelShader>>(15),
      Patch<&CreateState<DeviceCall::kCreateBlendState, &DeviceObserver::OnCreateBlendState, ID3D11BlendState,
                         D3D11_BLEND_DESC>>(20),
      Patch<&CreateState<DeviceCall::kCreateSamplerState, &DeviceObserver::OnCreateSamplerState, ID3D11SamplerState,
                         D3D11_SAMPLER_DESC>>(23),
      Patch<&OpenSharedResource>(28),
      Patch<&GetDeviceRemovedReason>(39),
  };
  return PatchMethods(device, patches);
}

}  // namespace bench
