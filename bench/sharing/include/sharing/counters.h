#pragma once

#include "sharing/device_group.h"

#include <cstdint>

namespace bench {

// Objects of a group's devices in this process that exist at this moment, and sums since the program started.
// An object exists until Direct3D itself lets go of it, which can be later than the last Release: what is bound
// to a context stays alive. Equal state objects are one object.
template <class Number>
struct CountersOf {
  Number liveDevices{0};
  Number liveTextures{0};        // all textures, shared ones included
  Number liveSharedTextures{0};  // textures behind a shared handle, made or opened
  Number liveBuffers{0};
  Number liveViews{0};    // shader-resource and render-target views
  Number liveShaders{0};  // vertex and pixel shaders
  Number liveStates{0};   // blend and sampler states
  Number heldMutexes{0};  // keyed mutexes that are acquired and not released

  Number acquired{0};   // AcquireSync that returned S_OK
  Number timedOut{0};   // AcquireSync that returned WAIT_TIMEOUT
  Number abandoned{0};  // AcquireSync that returned WAIT_ABANDONED
  Number uploads{0};    // copies from shared memory into a texture
  Number downloads{0};  // copies from a texture into shared memory
};

using Counters = CountersOf<std::int64_t>;

// Any thread. The fields are read one after the other, not as one snapshot.
[[nodiscard]] Counters ReadCounters(DeviceGroup group);

}  // namespace bench
