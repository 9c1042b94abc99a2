#include "shared_surface.h"

#include "handle_values.h"
#include "pixel_formats.h"

#include <array>
#include <cstdio>
#include <utility>

namespace bench {

namespace {

constexpr UINT kSharingFlags =
    D3D11_RESOURCE_MISC_SHARED | D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX | D3D11_RESOURCE_MISC_SHARED_NTHANDLE;

std::string SurfaceName(std::uint32_t handle) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "Local\\BenchSharing.%08x", static_cast<unsigned>(handle));
  return text.data();
}

SurfaceFormat FormatOf(const D3D11_TEXTURE2D_DESC& description) {
  return {.width = description.Width,
          .height = description.Height,
          .format = static_cast<std::uint32_t>(description.Format),
          .bindFlags = description.BindFlags,
          .miscFlags = description.MiscFlags,
          .rowBytes = description.Width * BytesPerPixel(description.Format)};
}

std::size_t PixelBytes(const SurfaceFormat& format) { return std::size_t{format.rowBytes} * format.height; }

}  // namespace

bool WantsSharing(const D3D11_TEXTURE2D_DESC& description) { return (description.MiscFlags & kSharingFlags) != 0; }

bool CanShare(const D3D11_TEXTURE2D_DESC& description) {
  const UINT kind = description.MiscFlags & kSharingFlags;
  const bool oneKind = kind == D3D11_RESOURCE_MISC_SHARED || kind == D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX;
  const bool onePlane = description.MipLevels == 1 && description.ArraySize == 1 && description.SampleDesc.Count == 1;
  const bool onGpu = description.Usage == D3D11_USAGE_DEFAULT && description.CPUAccessFlags == 0;
  return oneKind && onePlane && onGpu && BytesPerPixel(description.Format) != 0 && description.Width != 0 &&
         description.Height != 0;
}

std::shared_ptr<SharedSurface> SharedSurface::Create(const D3D11_TEXTURE2D_DESC& description) {
  if (!CanShare(description)) return nullptr;
  const SurfaceFormat format = FormatOf(description);
  // The sequence starts anew when no process uses it, so a value can be taken; a few tries find a free one.
  for (int attempt = 0; attempt < 16; ++attempt) {
    const std::uint32_t handle = NextHandleValue();
    auto mapping = NamedMapping::CreateNew(SurfaceName(handle), kSurfacePixelOffset + PixelBytes(format));
    if (!mapping) continue;
    auto surface = std::make_shared<SharedSurface>(handle, std::move(*mapping));
    surface->Header().format = format;
    surface->Header().magic = kSurfaceMagic;
    return surface;
  }
  return nullptr;
}

std::shared_ptr<SharedSurface> SharedSurface::Open(std::uint32_t handle) {
  auto mapping = NamedMapping::Open(SurfaceName(handle));
  if (!mapping) return nullptr;
  auto surface = std::make_shared<SharedSurface>(handle, std::move(*mapping));
  return surface->Header().magic == kSurfaceMagic ? surface : nullptr;
}

SharedSurface::SharedSurface(std::uint32_t handle, NamedMapping mapping)
    : handle_(handle), name_(SurfaceName(handle)), mapping_(std::move(mapping)), pixelLock_(name_ + ".pixels") {}

bool SharedSurface::HasKeyedMutex() const { return (Format().miscFlags & D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX) != 0; }

std::span<std::byte> SharedSurface::Pixels() { return {mapping_.Data() + kSurfacePixelOffset, PixelBytes(Format())}; }

}  // namespace bench
