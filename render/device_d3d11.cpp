#include "device_d3d11.h"

#include <dxgi.h>

#include <vector>

#include "render/output_rules.h"

namespace ombrel {
namespace {

std::vector<ComPtr<IDXGIAdapter>> ListAdapters() {
  std::vector<ComPtr<IDXGIAdapter>> adapters;
  ComPtr<IDXGIFactory> factory;
  if (FAILED(CreateDXGIFactory(__uuidof(IDXGIFactory), reinterpret_cast<void**>(factory.GetAddressOf())))) {
    return adapters;
  }
  ComPtr<IDXGIAdapter> adapter;
  for (UINT i = 0; SUCCEEDED(factory->EnumAdapters(i, adapter.ReleaseAndGetAddressOf())); ++i) {
    adapters.push_back(adapter);
  }
  return adapters;
}

ComPtr<IDXGIAdapter> FindPreferredAdapter() {
  for (const ComPtr<IDXGIAdapter>& adapter : ListAdapters()) {
    DXGI_ADAPTER_DESC desc{};
    if (SUCCEEDED(adapter->GetDesc(&desc)) && IsPreferredAdapter(desc.Description)) return adapter;
  }
  return nullptr;
}

}  // namespace

RenderDevice CreateRenderDevice() {
  RenderDevice made;
  const ComPtr<IDXGIAdapter> adapter = FindPreferredAdapter();
  // The result is not looked at: a device that is not there says enough.
  D3D11CreateDevice(adapter.Get(), D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION,
                    made.device.GetAddressOf(), nullptr, made.context.GetAddressOf());
  return made;
}

}  // namespace ombrel
