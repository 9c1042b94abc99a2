#pragma once

#include "base/owned_handle.h"

#include <cstdint>

namespace bench {

// A process as other processes can name it. The start time tells it from a later one that got the same id.
struct ProcessIdentity {
  std::uint32_t id = 0;
  std::uint64_t startTime = 0;  // FILETIME units
};

[[nodiscard]] ProcessIdentity CurrentProcessIdentity();

// Looks at a process once. `process` becomes signalled when the process ends, and is null when the process is
// gone, or when it may not be opened, in which case it counts as alive.
struct ProcessWatch {
  explicit ProcessWatch(const ProcessIdentity& identity);

  bool alive = false;
  OwnedHandle process;
};

}  // namespace bench
