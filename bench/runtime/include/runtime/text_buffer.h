#pragma once

#include <cstdint>
#include <string_view>

namespace bench {

// The runtime's rule for returning text: copies it with its terminating zero if `size` bytes are
// enough, else only an empty text, and returns the bytes needed.
std::uint32_t CopyText(std::string_view text, char* buffer, std::uint32_t size);

}  // namespace bench
