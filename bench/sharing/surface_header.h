#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace bench {

// What stands in shared memory before the pixels of a shared surface. All processes that share surfaces are
// built from this same header; the magic number changes with it.

enum class HoldState : std::uint32_t { kReleased = 0, kHeld = 1, kAbandoned = 2 };

// The state of a keyed mutex. Read and written under the surface's named mutex.
struct HoldRecord {
  std::atomic<HoldState> state;
  std::uint32_t ownerProcess;
  std::uint64_t ownerStartTime;
  std::uint64_t ownerInstance;  // which of the process's texture objects holds it
  std::uint64_t key;            // released: the key it was released with; held: the key it was acquired with
};
static_assert(sizeof(HoldRecord) == 32);

struct SurfaceFormat {
  std::uint32_t width;
  std::uint32_t height;
  std::uint32_t format;  // DXGI_FORMAT
  std::uint32_t bindFlags;
  std::uint32_t miscFlags;  // as its creator gave them
  std::uint32_t rowBytes;   // rows follow one another without a gap
};
static_assert(sizeof(SurfaceFormat) == 24);

struct SurfaceHeader {
  std::uint32_t magic;
  std::uint32_t reserved;
  SurfaceFormat format;
  HoldRecord hold;
  std::atomic<std::uint64_t> version;  // of the pixels; 0 until the first were written
};
static_assert(offsetof(SurfaceHeader, hold) == 32 && offsetof(SurfaceHeader, version) == 64);
static_assert(std::atomic<std::uint64_t>::is_always_lock_free && std::atomic<HoldState>::is_always_lock_free);

inline constexpr std::uint32_t kSurfaceMagic = 0x42530001;
inline constexpr std::size_t kSurfacePixelOffset = 4096;

}  // namespace bench
