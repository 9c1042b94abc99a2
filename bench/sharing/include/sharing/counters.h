#pragma once

#include "sharing/device_group.h"

#include <cstdint>

namespace bench {

// Objects of a group's devices in this process that exist at this moment, and sums since the program started.
// An object exists until Direct3D itself lets go of it, which can be later than the last Release: what is bound
// to a context stays alive. Equal state objects are one object.
struct Counters {
  std::int64_t liveDevices = 0;
  std::int64_t liveTextures = 0;        // all textures, shared ones included
  std::int64_t liveSharedTextures = 0;  // textures behind a shared handle, made or opened
  std::int64_t liveBuffers = 0;
  std::int64_t liveViews = 0;    // shader-resource and render-target views
  std::int64_t liveShaders = 0;  // vertex and pixel shaders
  std::int64_t liveStates = 0;   // blend and sampler states
  std::int64_t heldMutexes = 0;  // keyed mutexes that are acquired and not released

  std::int64_t acquired = 0;   // AcquireSync that returned S_OK
  std::int64_t timedOut = 0;   // AcquireSync that returned WAIT_TIMEOUT
  std::int64_t abandoned = 0;  // AcquireSync that returned WAIT_ABANDONED
  std::int64_t uploads = 0;    // copies from shared memory into a texture
  std::int64_t downloads = 0;  // copies from a texture into shared memory
};

// Any thread. The fields are read one after the other, not as one snapshot.
[[nodiscard]] Counters ReadCounters(DeviceGroup group);

}  // namespace bench
