#include "device.h"
#include "frame_source.h"

namespace preview {
namespace {

constexpr std::uint32_t kWaitMs = 10;
constexpr unsigned kMostAdapters = 16;

}  // namespace

bool FrameSource::Open(const companion::FrameSharingInfo& info) {
  for (unsigned candidate = 0; candidate <= kMostAdapters; ++candidate) {
    auto device = CreateDevice(candidate);
    if (!device) continue;
    reader_.emplace(std::move(device));
    if (SUCCEEDED(reader_->Open(info))) return true;
  }
  Close();
  return false;
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
