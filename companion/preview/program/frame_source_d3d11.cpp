#include "frame_source.h"

#include <dxgi.h>

#include <utility>

namespace preview {
namespace {

using Microsoft::WRL::ComPtr;

constexpr std::uint32_t kWaitMs = 10;
constexpr unsigned kMostAdapters = 16;

ComPtr<IDXGIAdapter> FindAdapter(unsigned index) {
  ComPtr<IDXGIFactory> factory;
  ComPtr<IDXGIAdapter> adapter;
  if (SUCCEEDED(CreateDXGIFactory(IID_PPV_ARGS(&factory)))) factory->EnumAdapters(index, &adapter);
  return adapter;
}

// Candidate 0 is on the system's default adapter, the others on each adapter in turn. Null when that one has none, or
// there are no more.
ComPtr<ID3D11Device> CreateDevice(unsigned candidate) {
  ComPtr<IDXGIAdapter> adapter;
  if (candidate > 0) adapter = FindAdapter(candidate - 1);
  if (candidate > 0 && !adapter) return nullptr;
  ComPtr<ID3D11Device> device;
  D3D11CreateDevice(adapter.Get(), adapter ? D3D_DRIVER_TYPE_UNKNOWN : D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0,
                    D3D11_SDK_VERSION, &device, nullptr, nullptr);
  return device;
}

}  // namespace

FrameSource::FrameSource() : device_(CreateDevice(0)) {}

bool FrameSource::Open(const companion::FrameSharingInfo& info) {
  if (OpenOn(device_, info)) return true;
  // The driver is on another adapter, or the device was lost meanwhile.
  for (unsigned candidate = 0; candidate <= kMostAdapters; ++candidate) {
    if (OpenOn(CreateDevice(candidate), info)) return true;
  }
  Close();
  return false;
}

bool FrameSource::OpenOn(ComPtr<ID3D11Device> device, const companion::FrameSharingInfo& info) {
  if (!device) return false;
  reader_.emplace(device);
  if (FAILED(reader_->Open(info))) return false;
  device_ = std::move(device);
  return true;
}

std::optional<companion::FrameInfo> FrameSource::Next(
    const std::function<bool(const companion::FrameInfo&)>& wantsPixels) {
  companion::FrameInfo frame;
  const auto result = reader_->Next(kWaitMs, wantsPixels, frame);
  if (result == companion::TurnResult::Failed) Close();
  if (result != companion::TurnResult::FrameHeld) return std::nullopt;
  return frame;
}

}  // namespace preview
