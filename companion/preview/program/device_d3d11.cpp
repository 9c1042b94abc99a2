#include "device.h"

#include <dxgi.h>

namespace preview {
namespace {

using Microsoft::WRL::ComPtr;

ComPtr<IDXGIAdapter> FindAdapter(unsigned index) {
  ComPtr<IDXGIFactory> factory;
  ComPtr<IDXGIAdapter> adapter;
  if (SUCCEEDED(CreateDXGIFactory(IID_PPV_ARGS(&factory)))) factory->EnumAdapters(index, &adapter);
  return adapter;
}

}  // namespace

ComPtr<ID3D11Device> CreateDevice(unsigned candidate) {
  ComPtr<IDXGIAdapter> adapter;
  if (candidate > 0) adapter = FindAdapter(candidate - 1);
  if (candidate > 0 && !adapter) return nullptr;
  ComPtr<ID3D11Device> device;
  D3D11CreateDevice(adapter.Get(), adapter ? D3D_DRIVER_TYPE_UNKNOWN : D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0,
                    D3D11_SDK_VERSION, &device, nullptr, nullptr);
  return device;
}

}  // namespace preview
