#include "texture_copier.h"

#include "group_state.h"
#include "sharing/textures.h"

#include <cstring>

namespace bench {

using Microsoft::WRL::ComPtr;

namespace {

struct Rows {
  std::byte* start;
  std::size_t pitch;
};

void CopyRows(Rows to, const std::byte* from, std::size_t fromPitch, const SurfaceFormat& format) {
  if (to.pitch == fromPitch) {
    std::memcpy(to.start, from, fromPitch * (format.height - 1) + format.rowBytes);
    return;
  }
  for (std::uint32_t row = 0; row < format.height; ++row) {
    std::memcpy(to.start + row * to.pitch, from + row * fromPitch, format.rowBytes);
  }
}

}  // namespace

TextureCopier::TextureCopier(ID3D11Texture2D* texture, const SurfaceFormat& format)
    : texture_(texture), format_(format) {}

bool TextureCopier::Upload(std::span<const std::byte> pixels) {
  const InternalCalls scope;
  const auto context = Prepare();
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (context == nullptr || FAILED(context->Map(staging_.Get(), 0, D3D11_MAP_WRITE, 0, &mapped))) return false;
  CopyRows({static_cast<std::byte*>(mapped.pData), mapped.RowPitch}, pixels.data(), format_.rowBytes, format_);
  context->Unmap(staging_.Get(), 0);
  context->CopyResource(texture_, staging_.Get());
  return true;
}

bool TextureCopier::Download(std::span<std::byte> pixels) {
  const InternalCalls scope;
  const auto context = Prepare();
  if (context == nullptr) return false;
  context->CopyResource(staging_.Get(), texture_);
  D3D11_MAPPED_SUBRESOURCE mapped{};
  if (FAILED(context->Map(staging_.Get(), 0, D3D11_MAP_READ, 0, &mapped))) return false;
  CopyRows({pixels.data(), format_.rowBytes}, static_cast<const std::byte*>(mapped.pData), mapped.RowPitch, format_);
  context->Unmap(staging_.Get(), 0);
  return true;
}

// The immediate context, once there is a staging texture; null when there is none to be had.
ComPtr<ID3D11DeviceContext> TextureCopier::Prepare() {
  ComPtr<ID3D11Device> device;
  texture_->GetDevice(&device);
  if (staging_ == nullptr) {
    auto description =
        StagingDescription(TextureDescription(format_.width, format_.height, static_cast<DXGI_FORMAT>(format_.format)));
    description.CPUAccessFlags |= D3D11_CPU_ACCESS_WRITE;
    if (FAILED(device->CreateTexture2D(&description, nullptr, &staging_))) return nullptr;
  }
  ComPtr<ID3D11DeviceContext> context;
  device->GetImmediateContext(&context);
  return context;
}

}  // namespace bench
