#pragma once

#include <cstdint>

namespace bench::runtime {

// The calling thread's number, as the system has it.
[[nodiscard]] std::uint32_t ThreadId();

}  // namespace bench::runtime
