#include "companion/frame_reader.h"

#include <algorithm>
#include <utility>

#include "performance_counter.h"

namespace companion {
namespace {

// The same texture, for the processor to read.
D3D11_TEXTURE2D_DESC StagingDescription(const D3D11_TEXTURE2D_DESC& output) {
  D3D11_TEXTURE2D_DESC description{};
  description.Width = output.Width;
  description.Height = output.Height;
  description.MipLevels = description.ArraySize = description.SampleDesc.Count = 1;
  description.Format = output.Format;
  description.Usage = D3D11_USAGE_STAGING;
  description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
  return description;
}

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
  // The driver sends the low 32 bits of a handle: the others are zero.
  const auto handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(sharedHandle));
  const HRESULT result = device_->OpenSharedResource(handle, IID_PPV_ARGS(&textures_[index]));
  return SUCCEEDED(result) ? textures_[index].As(&locks_[index]) : result;
}

HRESULT FrameReader::CreateCopyTarget() {
  D3D11_TEXTURE2D_DESC description{};
  textures_[0]->GetDesc(&description);
  if (description.Format != static_cast<DXGI_FORMAT>(OMBREL_TEXTURE_FORMAT)) return E_INVALIDARG;
  const D3D11_TEXTURE2D_DESC staging = StagingDescription(description);
  return device_->CreateTexture2D(&staging, nullptr, &copy_);
}

TurnResult FrameReader::Next(std::uint32_t timeoutMs, const std::function<bool(const FrameInfo&)>& wantsPixels,
                             FrameInfo& frame) {
  if (!turns_) return TurnResult::Failed;
  const TurnResult result = turns_->Next(timeoutMs);
  if (result != TurnResult::FrameHeld) return result;
  const int index = turns_->Index();
  frame = {index, CounterNow(), block_.ReadSlot(index)};
  if (wantsPixels(frame)) context_->CopyResource(copy_.Get(), textures_[static_cast<std::size_t>(index)].Get());
  turns_->Done();
  return result;
}

std::optional<Picture> FrameReader::Pixels() {
  if (!copy_) return std::nullopt;
  D3D11_TEXTURE2D_DESC copy{};
  copy_->GetDesc(&copy);
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context_->Map(copy_.Get(), 0, D3D11_MAP_READ, 0, &mapped))) return std::nullopt;
  Picture picture{copy.Width, copy.Height, Bytes(std::size_t{4} * copy.Width * copy.Height)};
  for (std::size_t row = 0; row < copy.Height; ++row) {
    const auto* from = static_cast<const std::uint8_t*>(mapped.pData) + row * mapped.RowPitch;
    std::copy_n(from, std::size_t{4} * copy.Width,
                picture.rgba.begin() + static_cast<std::ptrdiff_t>(4 * copy.Width * row));
  }
  context_->Unmap(copy_.Get(), 0);
  return picture;
}

LockResult FrameReader::Acquire(int index, std::uint32_t timeoutMs) {
  // WAIT_TIMEOUT is positive, so that FAILED() does not see it.
  const HRESULT result = locks_[static_cast<std::size_t>(index)]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, timeoutMs);
  if (result == S_OK) return LockResult::Acquired;
  return result == static_cast<HRESULT>(WAIT_TIMEOUT) ? LockResult::TimedOut : LockResult::Failed;
}

void FrameReader::Release(int index) { locks_[static_cast<std::size_t>(index)]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY); }

}  // namespace companion
