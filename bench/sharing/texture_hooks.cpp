#include "texture_hooks.h"

#include "attachment.h"
#include "keyed_mutex.h"
#include "shared_resource.h"
#include "shared_texture.h"
#include "sharing/textures.h"
#include "sharing/vtable_patch.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

namespace bench {

using Microsoft::WRL::ComPtr;

namespace {

constexpr GUID kSharedTextureName = {0x5d0c1f2e, 0x7a34, 0x4c0e, {0x9b, 0x61, 0x2f, 0x8e, 0x11, 0x6d, 0x40, 0x01}};

HRESULT STDMETHODCALLTYPE QueryInterface(ID3D11Texture2D* self, REFIID iid, void** object) {
  const bool wantsMutex = IsEqualGUID(iid, __uuidof(IDXGIKeyedMutex));
  const bool wantsResource = IsEqualGUID(iid, __uuidof(IDXGIResource));
  auto shared = wantsMutex || wantsResource ? SharedTextures().Find(self) : nullptr;
  if (shared == nullptr || object == nullptr) return Original<&QueryInterface>()(self, iid, object);
  *object = nullptr;
  const auto answer = wantsMutex ? shared->Observer().Answer(DeviceCall::kQueryKeyedMutex) : std::nullopt;
  if (answer) return *answer;
  if (wantsResource) *object = static_cast<IDXGIResource*>(new SharedResource(std::move(shared)));
  if (wantsMutex && shared != nullptr && shared->HasKeyedMutex()) {
    *object = static_cast<IDXGIKeyedMutex*>(new KeyedMutex(std::move(shared)));
  }
  return *object != nullptr ? S_OK : E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE Release(ID3D11Texture2D* self) {
  const auto shared = SharedTextures().Find(self);
  const ULONG left = Original<&Release>()(self);
  if (shared != nullptr && left == 0) shared->OnUnreferenced();
  return left;
}

void STDMETHODCALLTYPE GetDesc(ID3D11Texture2D* self, D3D11_TEXTURE2D_DESC* description) {
  Original<&GetDesc>()(self, description);
  const auto shared = SharedTextures().Find(self);
  if (shared != nullptr && description != nullptr) description->MiscFlags = shared->Format().miscFlags;
}

bool PatchTexture(ID3D11Texture2D* texture) {
  static const std::array patches{
      Patch<&QueryInterface>(0),
      Patch<&Release>(2),
      Patch<&GetDesc>(10),
  };
  return PatchMethods(texture, patches);
}

// The host's texture under a shared one. The host is not asked to share.
HRESULT CreateHostTexture(ID3D11Device* device, D3D11_TEXTURE2D_DESC description, const D3D11_SUBRESOURCE_DATA* data,
                          ID3D11Texture2D** texture) {
  const InternalCalls scope;
  constexpr UINT kSharedFlags = D3D11_RESOURCE_MISC_SHARED | D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX;
  description.MiscFlags &= ~kSharedFlags;
  const HRESULT result = device->CreateTexture2D(&description, data, texture);
  if (FAILED(result) || texture == nullptr) return result;
  return PatchTexture(*texture) ? result : E_UNEXPECTED;
}

std::shared_ptr<SharedTexture> Adopt(ID3D11Texture2D* texture, std::shared_ptr<SharedSurface> surface,
                                     const std::shared_ptr<DeviceState>& state) {
  const auto shared = std::make_shared<SharedTexture>(texture, std::move(surface), state);
  SharedTextures().Add(texture, shared);
  state->Textures().Add(shared->Handle(), shared);
  Attach(texture, kSharedTextureName, shared);
  return shared;
}

void FillSurface(SharedSurface& surface, const D3D11_SUBRESOURCE_DATA& data) {
  const std::size_t rowBytes = surface.Format().rowBytes;
  const auto* source = static_cast<const std::byte*>(data.pSysMem);
  const std::span<std::byte> pixels = surface.Pixels();
  for (std::size_t start = 0; start < pixels.size(); start += rowBytes, source += data.SysMemPitch) {
    std::memcpy(pixels.data() + start, source, rowBytes);
  }
  surface.Version() = 1;
}

void FillWithPattern(SharedSurface& surface) {
  constexpr std::array kTexels{std::byte{0x5A}, std::byte{0xC3}, std::byte{0x96}, std::byte{0x3C}};
  const std::span<std::byte> pixels = surface.Pixels();
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = kTexels[i % kTexels.size()];
  surface.Version() = 1;
}

D3D11_TEXTURE2D_DESC DescriptionOf(const SurfaceFormat& format) {
  auto description =
      TextureDescription(format.width, format.height, static_cast<DXGI_FORMAT>(format.format), format.miscFlags);
  description.BindFlags = format.bindFlags;
  return description;
}

}  // namespace

HRESULT CreateSharedTexture(const std::shared_ptr<DeviceState>& state, ID3D11Device* device,
                            const D3D11_TEXTURE2D_DESC& description, const D3D11_SUBRESOURCE_DATA* data,
                            ID3D11Texture2D** texture) {
  if (!CanShare(description)) return E_INVALIDARG;
  if (texture == nullptr) return CreateHostTexture(device, description, data, nullptr);
  auto surface = SharedSurface::Create(description);
  if (surface == nullptr) return E_OUTOFMEMORY;
  // Without initial data the texels are undefined: not to be mistaken for cleared ones.
  if (data != nullptr) {
    FillSurface(*surface, *data);
  } else {
    FillWithPattern(*surface);
  }
  const D3D11_SUBRESOURCE_DATA content{surface->Pixels().data(), surface->Format().rowBytes, 0};
  ComPtr<ID3D11Texture2D> made;
  const HRESULT result = CreateHostTexture(device, description, &content, &made);
  if (FAILED(result)) return result;
  Adopt(made.Get(), std::move(surface), state)->SetCurrent();
  *texture = made.Detach();
  return result;
}

HRESULT OpenSharedTexture(const std::shared_ptr<DeviceState>& state, ID3D11Device* device, std::uint32_t handle,
                          REFIID iid, void** object) {
  if (const auto known = state->Textures().Find(handle)) return known->Texture()->QueryInterface(iid, object);
  auto surface = SharedSurface::Open(handle);
  if (surface == nullptr) return E_INVALIDARG;
  ComPtr<ID3D11Texture2D> made;
  const HRESULT result = CreateHostTexture(device, DescriptionOf(surface->Format()), nullptr, &made);
  if (FAILED(result)) return result;
  Adopt(made.Get(), std::move(surface), state);
  return made->QueryInterface(iid, object);
}

}  // namespace bench
