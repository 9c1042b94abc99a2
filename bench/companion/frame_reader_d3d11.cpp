#include "companion/frame_reader.h"

#include <utility>

#include "base/clock.h"
#include "sharing/sharing_device.h"
#include "sharing/textures.h"

namespace bench {
namespace {

constexpr UINT64 kKey = 0;

}  // namespace

FrameReader::FrameReader(Microsoft::WRL::ComPtr<ID3D11Device> device) : device_(std::move(device)) {
  device_->GetImmediateContext(&context_);
}

FrameReader::~FrameReader() = default;

HRESULT FrameReader::Open(const FrameSharingInfo& info) {
  Close();
  HRESULT result = OpenTexture(0, info.sharedHandles[0]);
  if (SUCCEEDED(result)) result = OpenTexture(1, info.sharedHandles[1]);
  if (SUCCEEDED(result)) result = CreateCopyTarget();
  if (FAILED(result)) {
    Close();
    return result;
  }
  hasBlock_ = block_.Open(info.name);
  turns_.emplace(static_cast<FrameLocks&>(*this));
  return S_OK;
}

void FrameReader::Close() {
  turns_.reset();
  for (auto& lock : locks_) lock.Reset();
  for (auto& texture : textures_) texture.Reset();
  copy_.Reset();
  block_.Close();
  hasBlock_ = false;
}

HRESULT FrameReader::OpenTexture(std::size_t index, std::uint32_t sharedHandle) {
  textures_[index] = bench::OpenTexture(*device_.Get(), sharedHandle);
  if (!textures_[index]) return E_INVALIDARG;
  locks_[index] = FindKeyedMutex(textures_[index].Get());
  // Nothing is ever drawn into it, so that giving it back need not copy it back.
  return locks_[index] ? MarkReadOnly(textures_[index].Get()) : E_NOINTERFACE;
}

HRESULT FrameReader::CreateCopyTarget() {
  D3D11_TEXTURE2D_DESC description{};
  textures_[0]->GetDesc(&description);
  if (description.Format != DXGI_FORMAT_R8G8B8A8_UNORM) return E_INVALIDARG;
  const D3D11_TEXTURE2D_DESC staging = StagingDescription(description);
  return device_->CreateTexture2D(&staging, nullptr, &copy_);
}

TurnResult FrameReader::Next(std::uint32_t timeoutMs, const std::function<bool(const FrameInfo&)>& wantsPixels,
                             FrameInfo& frame) {
  if (!turns_) return TurnResult::Failed;
  const TurnResult result = turns_->Next(timeoutMs);
  if (result != TurnResult::FrameHeld) return result;
  const int index = turns_->Index();
  frame = {index, NowTicks(), block_.ReadSlot(index)};
  if (wantsPixels(frame)) context_->CopyResource(copy_.Get(), textures_[static_cast<std::size_t>(index)].Get());
  turns_->Done();
  return result;
}

std::optional<Image> FrameReader::Pixels() {
  if (!copy_) return std::nullopt;
  D3D11_TEXTURE2D_DESC copy{};
  copy_->GetDesc(&copy);
  auto pixels = ReadStaging(*context_.Get(), copy_.Get(), 4 * copy.Width);
  if (pixels.empty()) return std::nullopt;
  return Image(static_cast<int>(copy.Width), static_cast<int>(copy.Height), std::move(pixels));
}

LockResult FrameReader::Acquire(int index, std::uint32_t timeoutMs) {
  // WAIT_TIMEOUT is positive, so that FAILED() does not see it.
  const HRESULT result = locks_[static_cast<std::size_t>(index)]->AcquireSync(kKey, timeoutMs);
  if (result == S_OK) return LockResult::Acquired;
  return result == static_cast<HRESULT>(WAIT_TIMEOUT) ? LockResult::TimedOut : LockResult::Failed;
}

void FrameReader::Release(int index) { locks_[static_cast<std::size_t>(index)]->ReleaseSync(kKey); }

}  // namespace bench
