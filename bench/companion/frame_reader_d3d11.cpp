#include "companion/frame_reader.h"

#include <cstring>

#include "companion/clock.h"
#include "sharing/sharing_device.h"

namespace bench {
namespace {

constexpr UINT64 kKey = 0;

// Shared handles travel as 32 bits and are widened with zeros.
HANDLE Widen(std::uint32_t sharedHandle) {
  HANDLE handle = nullptr;
  const std::uint64_t wide = sharedHandle;
  static_assert(sizeof(handle) == sizeof(wide));
  std::memcpy(&handle, &wide, sizeof(handle));
  return handle;
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
  HRESULT result = device_->OpenSharedResource(Widen(sharedHandle), IID_PPV_ARGS(&textures_[index]));
  if (SUCCEEDED(result)) result = textures_[index].As(&locks_[index]);
  // Nothing is ever drawn into it, so that giving it back need not copy it back.
  if (SUCCEEDED(result)) result = MarkReadOnly(textures_[index].Get());
  return result;
}

HRESULT FrameReader::CreateCopyTarget() {
  textures_[0]->GetDesc(&description_);
  if (description_.Format != DXGI_FORMAT_R8G8B8A8_UNORM) return E_INVALIDARG;
  D3D11_TEXTURE2D_DESC staging = description_;
  staging.Usage = D3D11_USAGE_STAGING;
  staging.BindFlags = 0;
  staging.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
  staging.MiscFlags = 0;
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
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (!copy_ || FAILED(context_->Map(copy_.Get(), 0, D3D11_MAP_READ, 0, &mapped))) return std::nullopt;
  Image image(static_cast<int>(description_.Width), static_cast<int>(description_.Height));
  const std::size_t rowBytes = std::size_t{4} * description_.Width;
  const auto* rows = static_cast<const std::uint8_t*>(mapped.pData);
  for (std::size_t y = 0; y < description_.Height; ++y) {
    std::memcpy(image.pixels.data() + y * rowBytes, rows + y * mapped.RowPitch, rowBytes);
  }
  context_->Unmap(copy_.Get(), 0);
  return image;
}

LockResult FrameReader::Acquire(int index, std::uint32_t timeoutMs) {
  // WAIT_TIMEOUT is positive, so that FAILED() does not see it.
  const HRESULT result = locks_[static_cast<std::size_t>(index)]->AcquireSync(kKey, timeoutMs);
  if (result == S_OK) return LockResult::Acquired;
  return result == static_cast<HRESULT>(WAIT_TIMEOUT) ? LockResult::TimedOut : LockResult::Failed;
}

void FrameReader::Release(int index) { locks_[static_cast<std::size_t>(index)]->ReleaseSync(kKey); }

}  // namespace bench
