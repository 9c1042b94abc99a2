#pragma once

#include "counted.h"
#include "shared_texture.h"

#include <d3d11.h>
#include <wrl/client.h>

#include <memory>
#include <utility>

namespace bench {

// A DXGI interface of a shared texture that the host's Direct3D lacks. A small object of its own that keeps the
// texture alive; every other interface, IUnknown included, is the texture's. `Interface` derives from
// IDXGIDeviceSubObject.
template <class Interface>
class TextureFacet : public Counted<Interface> {
 public:
  explicit TextureFacet(std::shared_ptr<SharedTexture> shared)
      : shared_(std::move(shared)), texture_(shared_->Texture()) {}
  TextureFacet(const TextureFacet&) = delete;
  TextureFacet& operator=(const TextureFacet&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr || !IsEqualGUID(iid, __uuidof(Interface))) return texture_->QueryInterface(iid, object);
    *object = static_cast<Interface*>(this);
    this->AddRef();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID name, UINT size, const void* data) override {
    return texture_->SetPrivateData(name, size, data);
  }
  HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID name, const IUnknown* object) override {
    return texture_->SetPrivateDataInterface(name, object);
  }
  HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID name, UINT* size, void* data) override {
    return texture_->GetPrivateData(name, size, data);
  }
  HRESULT STDMETHODCALLTYPE GetParent(REFIID iid, void** parent) override { return GetDevice(iid, parent); }
  HRESULT STDMETHODCALLTYPE GetDevice(REFIID iid, void** device) override {
    Microsoft::WRL::ComPtr<ID3D11Device> owner;
    texture_->GetDevice(&owner);
    return owner->QueryInterface(iid, device);
  }

 protected:
  [[nodiscard]] SharedTexture& Shared() const { return *shared_; }
  [[nodiscard]] ID3D11Texture2D* Texture() const { return texture_.Get(); }

 private:
  std::shared_ptr<SharedTexture> shared_;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> texture_;
};

}  // namespace bench
