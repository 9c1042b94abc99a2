#include "context_hooks.h"

#include "caller.h"
#include "shared_texture.h"
#include "sharing/vtable_patch.h"

#include <wrl/client.h>

#include <array>

namespace bench {

using Microsoft::WRL::ComPtr;

namespace {

constexpr UINT kRefreshedSlots = 16;

void RefreshResource(const Caller& caller, ID3D11Resource* resource) {
  if (caller.Device() == nullptr || resource == nullptr) return;
  const auto shared = SharedTextures().Find(resource);
  if (shared == nullptr) return;
  caller.Observer().OnReadSharedTexture(shared->Handle());
  shared->Refresh();
}

// Asked of the context at each draw, so that it does not matter when and how a texture was bound.
void RefreshBoundTextures(const Caller& caller, ID3D11DeviceContext* context) {
  if (caller.Device() == nullptr) return;
  std::array<ID3D11ShaderResourceView*, kRefreshedSlots> bound{};
  context->PSGetShaderResources(0, kRefreshedSlots, bound.data());
  for (ID3D11ShaderResourceView* const slot : bound) {
    ComPtr<ID3D11ShaderResourceView> view;
    *view.GetAddressOf() = slot;  // MinGW's ComPtr::Attach adds a reference
    if (view == nullptr) continue;
    ComPtr<ID3D11Resource> resource;
    view->GetResource(&resource);
    RefreshResource(caller, resource.Get());
  }
}

void STDMETHODCALLTYPE PSSetShaderResources(ID3D11DeviceContext* self, UINT slot, UINT count,
                                            ID3D11ShaderResourceView* const* views) {
  Caller(self).Observer().OnPSSetShaderResources(slot, {views, count});
  Original<&PSSetShaderResources>()(self, slot, count, views);
}

void STDMETHODCALLTYPE PSSetSamplers(ID3D11DeviceContext* self, UINT slot, UINT count,
                                     ID3D11SamplerState* const* samplers) {
  Caller(self).Observer().OnPSSetSamplers(slot, {samplers, count});
  Original<&PSSetSamplers>()(self, slot, count, samplers);
}

void STDMETHODCALLTYPE DrawIndexed(ID3D11DeviceContext* self, UINT indexCount, UINT firstIndex, INT baseVertex) {
  RefreshBoundTextures(Caller(self), self);
  Original<&DrawIndexed>()(self, indexCount, firstIndex, baseVertex);
}

void STDMETHODCALLTYPE Draw(ID3D11DeviceContext* self, UINT vertexCount, UINT firstVertex) {
  const Caller caller(self);
  caller.Observer().OnDraw(vertexCount, firstVertex);
  RefreshBoundTextures(caller, self);
  Original<&Draw>()(self, vertexCount, firstVertex);
}

HRESULT STDMETHODCALLTYPE Map(ID3D11DeviceContext* self, ID3D11Resource* resource, UINT subresource, D3D11_MAP type,
                              UINT flags, D3D11_MAPPED_SUBRESOURCE* mapped) {
  const Caller caller(self);
  if (const auto answer = caller.Observer().Answer(DeviceCall::kMap)) {
    if (mapped != nullptr) *mapped = {};
    return *answer;
  }
  caller.Observer().OnMap(resource, type);
  return Original<&Map>()(self, resource, subresource, type, flags, mapped);
}

void STDMETHODCALLTYPE IASetPrimitiveTopology(ID3D11DeviceContext* self, D3D11_PRIMITIVE_TOPOLOGY topology) {
  Caller(self).Observer().OnIASetPrimitiveTopology(topology);
  Original<&IASetPrimitiveTopology>()(self, topology);
}

void STDMETHODCALLTYPE OMSetRenderTargets(ID3D11DeviceContext* self, UINT count, ID3D11RenderTargetView* const* views,
                                          ID3D11DepthStencilView* depth) {
  Caller(self).Observer().OnOMSetRenderTargets({views, views == nullptr ? 0 : count}, depth);
  Original<&OMSetRenderTargets>()(self, count, views, depth);
}

void STDMETHODCALLTYPE OMSetBlendState(ID3D11DeviceContext* self, ID3D11BlendState* state, const FLOAT* factor,
                                       UINT sampleMask) {
  Caller(self).Observer().OnOMSetBlendState(state, factor, sampleMask);
  Original<&OMSetBlendState>()(self, state, factor, sampleMask);
}

void STDMETHODCALLTYPE RSSetViewports(ID3D11DeviceContext* self, UINT count, const D3D11_VIEWPORT* viewports) {
  Caller(self).Observer().OnRSSetViewports({viewports, viewports == nullptr ? 0 : count});
  Original<&RSSetViewports>()(self, count, viewports);
}

void STDMETHODCALLTYPE CopySubresourceRegion(ID3D11DeviceContext* self, ID3D11Resource* target, UINT targetIndex,
                                             UINT x, UINT y, UINT z, ID3D11Resource* source, UINT sourceIndex,
                                             const D3D11_BOX* box) {
  RefreshResource(Caller(self), source);
  Original<&CopySubresourceRegion>()(self, target, targetIndex, x, y, z, source, sourceIndex, box);
}

void STDMETHODCALLTYPE CopyResource(ID3D11DeviceContext* self, ID3D11Resource* target, ID3D11Resource* source) {
  const Caller caller(self);
  caller.Observer().OnCopyResource(target, source);
  RefreshResource(caller, source);
  Original<&CopyResource>()(self, target, source);
}

void STDMETHODCALLTYPE ClearRenderTargetView(ID3D11DeviceContext* self, ID3D11RenderTargetView* view,
                                             const FLOAT* color) {
  Caller(self).Observer().OnClearRenderTargetView(view, std::span<const FLOAT, 4>(color, 4));
  Original<&ClearRenderTargetView>()(self, view, color);
}

void STDMETHODCALLTYPE Flush(ID3D11DeviceContext* self) {
  Caller(self).Observer().OnFlush();
  Original<&Flush>()(self);
}

}  // namespace

bool PatchContext(ID3D11DeviceContext* context) {
  static const std::array patches{
      Patch<&PSSetShaderResources>(8),
      Patch<&PSSetSamplers>(10),
      Patch<&DrawIndexed>(12),
      Patch<&Draw>(13),
      Patch<&Map>(14),
      Patch<&IASetPrimitiveTopology>(24),
      Patch<&OMSetRenderTargets>(33),
      Patch<&OMSetBlendState>(35),
      Patch<&RSSetViewports>(44),
      Patch<&CopySubresourceRegion>(46),
      Patch<&CopyResource>(47),
      Patch<&ClearRenderTargetView>(50),
      Patch<&Flush>(111),
  };
  return PatchMethods(context, patches);
}

}  // namespace bench
