#pragma once

#include "counted.h"

#include <d3d11.h>
#include <wrl/client.h>

#include <memory>
#include <utility>

namespace bench {

// Keeps something alive for as long as a Direct3D object exists: the object holds an attachment as private data
// and releases it when it is destroyed, on whichever thread that happens and possibly under Direct3D's own lock.
class Attachment final : public Counted<IUnknown> {
 public:
  explicit Attachment(std::shared_ptr<void> content) : content_(std::move(content)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = IsEqualGUID(iid, IID_IUnknown) ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

 private:
  std::shared_ptr<void> content_;
};

// Replaces what was attached under `name` before. `Object` is a device or a device child.
template <class Object>
void Attach(Object* object, const GUID& name, std::shared_ptr<void> content) {
  Microsoft::WRL::ComPtr<Attachment> attachment;
  *attachment.GetAddressOf() = new Attachment(std::move(content));  // MinGW's ComPtr::Attach adds a reference
  object->SetPrivateDataInterface(name, attachment.Get());
}

}  // namespace bench
