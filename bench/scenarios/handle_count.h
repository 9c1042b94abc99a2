#pragma once

#include <cstdint>

namespace bench::scenarios {

// How many kernel handles this process has open, from the system's list of all: Wine's GetProcessHandleCount always says
// 0. Throws std::runtime_error when there is no list. Any thread.
[[nodiscard]] std::int64_t CountOwnHandles();

}  // namespace bench::scenarios
