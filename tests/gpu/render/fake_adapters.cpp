#include "fake_adapters.h"

#include <algorithm>

namespace ombrel::test {
// What the two interfaces have in common, and nobody asks of them.
template <class Interface>
class FakeObject : public Interface {
 public:
  [[nodiscard]] int References() const { return references_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references_); }
  HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT*, void*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetParent(REFIID, void**) override { return E_NOTIMPL; }

 private:
  int references_ = 0;
};

class FakeAdapters::Adapter : public FakeObject<IDXGIAdapter> {
 public:
  explicit Adapter(std::wstring description) : description_(std::move(description)) {}

  HRESULT STDMETHODCALLTYPE EnumOutputs(UINT, IDXGIOutput**) override { return DXGI_ERROR_NOT_FOUND; }
  HRESULT STDMETHODCALLTYPE GetDesc(DXGI_ADAPTER_DESC* desc) override {
    *desc = {};
    std::copy(description_.begin(), description_.end(), desc->Description);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE CheckInterfaceSupport(REFGUID, LARGE_INTEGER*) override { return E_NOTIMPL; }

 private:
  const std::wstring description_;
};

class FakeAdapters::Factory : public FakeObject<IDXGIFactory> {
 public:
  explicit Factory(const std::vector<std::unique_ptr<Adapter>>& adapters) : adapters_(adapters) {}

  std::vector<UINT> enumerated;

  HRESULT STDMETHODCALLTYPE EnumAdapters(UINT index, IDXGIAdapter** adapter) override {
    enumerated.push_back(index);
    if (index >= adapters_.size()) {
      *adapter = nullptr;
      return DXGI_ERROR_NOT_FOUND;
    }
    *adapter = adapters_[index].get();
    (*adapter)->AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE MakeWindowAssociation(HWND, UINT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetWindowAssociation(HWND*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateSwapChain(IUnknown*, DXGI_SWAP_CHAIN_DESC*, IDXGISwapChain**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateSoftwareAdapter(HMODULE, IDXGIAdapter**) override { return E_NOTIMPL; }

 private:
  const std::vector<std::unique_ptr<Adapter>>& adapters_;
};

FakeAdapters::FakeAdapters() : factory_(std::make_unique<Factory>(adapters_)) {}

FakeAdapters::~FakeAdapters() = default;

IDXGIAdapter* FakeAdapters::Add(const std::wstring& description) {
  adapters_.push_back(std::make_unique<Adapter>(description));
  return adapters_.back().get();
}

HRESULT FakeAdapters::CreateFactory(REFIID iid, void** factory) {
  *factory = nullptr;
  if (failing_) return E_FAIL;
  if (!IsEqualGUID(iid, __uuidof(IDXGIFactory))) return E_NOINTERFACE;
  factory_->AddRef();
  *factory = factory_.get();
  return S_OK;
}

std::vector<UINT> FakeAdapters::Enumerated() const { return factory_->enumerated; }

int FakeAdapters::References() const {
  int references = factory_->References();
  for (const auto& adapter : adapters_) references += adapter->References();
  return references;
}

}  // namespace ombrel::test
