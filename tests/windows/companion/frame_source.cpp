#include "frame_source.h"

#include <cstring>
#include <vector>

#include "sharing/sharing_device.h"

bool FrameSource::Create(std::uint32_t width, std::uint32_t height, std::uint32_t acquireTimeoutMs) {
  width_ = width;
  height_ = height;
  acquireTimeoutMs_ = acquireTimeoutMs;
  if (FAILED(bench::CreateSharingDevice(&device_, &context_))) return false;
  D3D11_TEXTURE2D_DESC description{};
  description.Width = width;
  description.Height = height;
  description.MipLevels = description.ArraySize = description.SampleDesc.Count = 1;
  description.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
  description.BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET;
  description.MiscFlags = D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX;
  for (std::size_t i = 0; i < textures_.size(); ++i) {
    Microsoft::WRL::ComPtr<IDXGIResource> resource;
    HANDLE handle = nullptr;
    if (FAILED(device_->CreateTexture2D(&description, nullptr, &textures_[i])) || FAILED(textures_[i].As(&locks_[i])) ||
        FAILED(textures_[i].As(&resource)) || FAILED(resource->GetSharedHandle(&handle))) {
      return false;
    }
    handles_[i] = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
  }
  name_ = "FrameSource" + std::to_string(GetCurrentProcessId()) + 'x' + std::to_string(handles_[0]);
  mapping_ =
      bench::OwnedHandle(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 128, name_.c_str()));
  block_.reset(MapViewOfFile(mapping_.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 128));
  return block_ != nullptr && locks_[0]->AcquireSync(0, acquireTimeoutMs_) == S_OK;
}

companion::FrameSharingInfo FrameSource::Info() const {
  return {GetCurrentProcessId(), {handles_[0], handles_[1]}, name_, false};
}

void FrameSource::FillHalf(std::uint32_t half, const bench::Rgba& colour) {
  const std::uint32_t left = half * width_ / 2, right = (half + 1) * width_ / 2;
  std::vector<std::uint8_t> pixels;
  for (std::uint32_t i = 0; i < (right - left) * height_; ++i)
    pixels.insert(pixels.end(), colour.begin(), colour.end());
  const D3D11_BOX box{left, 0, 0, right, height_, 1};
  context_->UpdateSubresource(textures_[current_].Get(), 0, &box, pixels.data(), (right - left) * 4, 0);
}

bool FrameSource::Present(const bench::Rgba& left, const bench::Rgba& right, const companion::PoseSlot& slot) {
  FillHalf(0, left);
  FillHalf(1, right);
  std::memcpy(static_cast<char*>(block_.get()) + 64 * current_, slot.data(), sizeof(slot));
  if (locks_[current_]->ReleaseSync(0) != S_OK) return false;
  current_ = 1 - current_;
  return locks_[current_]->AcquireSync(0, acquireTimeoutMs_) == S_OK;
}
