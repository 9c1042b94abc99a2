#pragma once

#include <cstddef>

namespace ombrel::test {

// The named block that was made last, in place of the one that a companion would open by its name. Null when it is gone.
[[nodiscard]] const std::byte* NewestBlock();

}  // namespace ombrel::test
