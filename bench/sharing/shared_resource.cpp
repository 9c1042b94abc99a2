#include "shared_resource.h"

#include <cstdint>

namespace bench {

HRESULT STDMETHODCALLTYPE SharedResource::GetSharedHandle(HANDLE* handle) {
  if (handle == nullptr) return E_INVALIDARG;
  *handle = nullptr;
  if (const auto answer = Shared().Observer().Answer(DeviceCall::kGetSharedHandle)) return *answer;
  *handle = reinterpret_cast<HANDLE>(std::uintptr_t{Shared().Handle()});
  return S_OK;
}

HRESULT STDMETHODCALLTYPE SharedResource::GetUsage(DXGI_USAGE* usage) {
  if (usage == nullptr) return E_INVALIDARG;
  const UINT bindFlags = Shared().Format().bindFlags;
  *usage = (bindFlags & D3D11_BIND_SHADER_RESOURCE) != 0 ? DXGI_USAGE_SHADER_INPUT : 0;
  if ((bindFlags & D3D11_BIND_RENDER_TARGET) != 0) *usage |= DXGI_USAGE_RENDER_TARGET_OUTPUT;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE SharedResource::SetEvictionPriority(UINT priority) {
  Texture()->SetEvictionPriority(priority);
  return S_OK;
}

HRESULT STDMETHODCALLTYPE SharedResource::GetEvictionPriority(UINT* priority) {
  if (priority == nullptr) return E_INVALIDARG;
  *priority = Texture()->GetEvictionPriority();
  return S_OK;
}

}  // namespace bench
