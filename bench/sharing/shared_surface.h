#pragma once

#include "named_mapping.h"
#include "named_mutex.h"
#include "surface_header.h"

#include <d3d11.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace bench {

// The memory behind a shared handle: a format, the keyed mutex's state and one copy of the pixels. It exists
// while any process has it open. Who may touch the pixels: with a keyed mutex its holder, without one whoever
// has locked PixelLock().
class SharedSurface {
 public:
  // Null when the description cannot be shared (see CanShare) or memory is short.
  [[nodiscard]] static std::shared_ptr<SharedSurface> Create(const D3D11_TEXTURE2D_DESC& description);
  // Null when no process has a surface of that handle.
  [[nodiscard]] static std::shared_ptr<SharedSurface> Open(std::uint32_t handle);

  SharedSurface(std::uint32_t handle, NamedMapping mapping);

  [[nodiscard]] std::uint32_t Handle() const { return handle_; }
  [[nodiscard]] const std::string& Name() const { return name_; }
  [[nodiscard]] const SurfaceFormat& Format() const { return Header().format; }
  [[nodiscard]] bool HasKeyedMutex() const;
  [[nodiscard]] HoldRecord& Hold() { return Header().hold; }
  [[nodiscard]] std::atomic<std::uint64_t>& Version() { return Header().version; }
  [[nodiscard]] std::span<std::byte> Pixels();
  [[nodiscard]] NamedMutex& PixelLock() { return pixelLock_; }

 private:
  SurfaceHeader& Header() const { return *reinterpret_cast<SurfaceHeader*>(mapping_.Data()); }

  std::uint32_t handle_;
  std::string name_;
  NamedMapping mapping_;
  NamedMutex pixelLock_;
};

// Whether a description asks for sharing by handle at all.
[[nodiscard]] bool WantsSharing(const D3D11_TEXTURE2D_DESC& description);
// Whether it can be had: exactly one of the two kinds of sharing, a known format, default usage without CPU
// access, one mip level, one layer, one sample.
[[nodiscard]] bool CanShare(const D3D11_TEXTURE2D_DESC& description);

}  // namespace bench
