#include "sharing/sharing_device.h"

#include "attachment.h"
#include "context_hooks.h"
#include "device_hooks.h"
#include "device_state.h"
#include "shared_texture.h"
#include "sharing/import_patch.h"
#include "sharing/textures.h"

#include <wrl/client.h>

namespace bench {

using Microsoft::WRL::ComPtr;

namespace {

constexpr GUID kDeviceStateName = {0x5d0c1f2e, 0x7a34, 0x4c0e, {0x9b, 0x61, 0x2f, 0x8e, 0x11, 0x6d, 0x40, 0x02}};

bool Adopt(ID3D11Device* device, DeviceGroup group) {
  ComPtr<ID3D11DeviceContext> context;
  device->GetImmediateContext(&context);
  if (!PatchDevice(device) || !PatchContext(context.Get())) return false;
  const auto state = std::make_shared<DeviceState>(device, context.Get(), StateOf(group));
  Devices().Add(device, state);
  Devices().Add(context.Get(), state);
  Attach(device, kDeviceStateName, state);
  return true;
}

// By the module, not by our own import: that may be redirected too.
PFN_D3D11_CREATE_DEVICE HostCreateDevice() {
  const FARPROC found = GetProcAddress(LoadLibraryA("d3d11.dll"), "D3D11CreateDevice");
  return reinterpret_cast<PFN_D3D11_CREATE_DEVICE>(reinterpret_cast<void*>(found));
}

struct Request {
  IDXGIAdapter* adapter;
  D3D_DRIVER_TYPE type;
  HMODULE software;
  UINT flags;
  const D3D_FEATURE_LEVEL* levels;
  UINT levelCount;
  UINT version;
};

constexpr Request kHardware{nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION};

HRESULT CreateHost(const Request& request, ID3D11Device** device, D3D_FEATURE_LEVEL* level,
                   ID3D11DeviceContext** context) {
  static const PFN_D3D11_CREATE_DEVICE create = HostCreateDevice();
  if (create == nullptr) return E_FAIL;
  return create(request.adapter, request.type, request.software, request.flags, request.levels, request.levelCount,
                request.version, device, level, context);
}

HRESULT CreateAdopted(DeviceGroup group, const Request& request, ID3D11Device** device, D3D_FEATURE_LEVEL* level,
                      ID3D11DeviceContext** context) {
  ComPtr<ID3D11Device> made;
  const HRESULT result = CreateHost(request, &made, level, nullptr);
  if (FAILED(result)) return result;
  if (!Adopt(made.Get(), group)) return E_UNEXPECTED;
  if (context != nullptr) made->GetImmediateContext(context);
  if (device != nullptr) *device = made.Detach();
  return result;
}

HRESULT WINAPI InterceptedCreateDevice(IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, HMODULE software, UINT flags,
                                       const D3D_FEATURE_LEVEL* levels, UINT levelCount, UINT version,
                                       ID3D11Device** device, D3D_FEATURE_LEVEL* level, ID3D11DeviceContext** context) {
  if (device != nullptr) *device = nullptr;
  if (context != nullptr) *context = nullptr;
  const auto group = DeviceGroup::kIntercepted;
  if (const auto answer = StateOf(group).Observer().Answer(DeviceCall::kCreateDevice)) return *answer;
  const Request request{adapter, type, software, flags, levels, levelCount, version};
  return CreateAdopted(group, request, device, level, context);
}

// What a real program does where the stand-in copies.
HRESULT FlushShared(ID3D11Texture2D* texture) {
  D3D11_TEXTURE2D_DESC description{};
  texture->GetDesc(&description);
  if ((description.MiscFlags & D3D11_RESOURCE_MISC_SHARED) == 0) return E_INVALIDARG;
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11DeviceContext> context;
  texture->GetDevice(&device);
  device->GetImmediateContext(&context);
  context->Flush();
  return S_OK;
}

}  // namespace

HRESULT CreateDeviceOf(Sharing kind, ID3D11Device** device, ID3D11DeviceContext** context) {
  if (kind == Sharing::kOwn) return CreateHost(kHardware, device, nullptr, context);
  return CreateAdopted(DeviceGroup::kOwn, kHardware, device, nullptr, context);
}

HRESULT CreateSharingDevice(ID3D11Device** device, ID3D11DeviceContext** context) {
  return CreateDeviceOf(SharingInUse(), device, context);
}

bool InterceptModule(HMODULE module) {
  if (SharingInUse() == Sharing::kOwn) return true;
  return ReplaceImport(module, "d3d11.dll", "D3D11CreateDevice", reinterpret_cast<void*>(&InterceptedCreateDevice));
}

bool ShareTexturesOf(ID3D11Device* device) { return Adopt(device, DeviceGroup::kIntercepted); }

HRESULT PublishSharedTexture(ID3D11Texture2D* texture) {
  if (SharingInUse() == Sharing::kOwn) return FlushShared(texture);
  const auto shared = SharedTextures().Find(texture);
  return shared == nullptr ? E_INVALIDARG : shared->Publish();
}

HRESULT MarkReadOnly(ID3D11Texture2D* texture) {
  if (SharingInUse() == Sharing::kOwn) return FindKeyedMutex(texture) ? S_OK : E_INVALIDARG;
  const auto shared = SharedTextures().Find(texture);
  if (shared == nullptr || !shared->HasKeyedMutex()) return E_INVALIDARG;
  shared->MarkReadOnly();
  return S_OK;
}

void SetObserver(DeviceGroup group, DeviceObserver* observer) { StateOf(group).SetObserver(observer); }

}  // namespace bench
