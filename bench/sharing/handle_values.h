#pragma once

#include <cstdint>

namespace bench {

// The next value for a shared handle: not zero, below 2^31 (so that it survives being cut to 32 bits and widened
// again, with or without sign), different in all processes, and not given again before 2^28 others were.
// Any thread. After the last process that used it has ended, the sequence starts again at a value that
// depends on the time.
[[nodiscard]] std::uint32_t NextHandleValue();

}  // namespace bench
