#include "frame_source.h"

#include <utility>

#include "device.h"

namespace preview {
namespace {

constexpr std::uint32_t kWaitMs = 10;
constexpr unsigned kMostAdapters = 16;

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

bool FrameSource::OpenOn(Microsoft::WRL::ComPtr<ID3D11Device> device, const companion::FrameSharingInfo& info) {
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
