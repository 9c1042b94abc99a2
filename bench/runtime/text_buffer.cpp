#include "runtime/text_buffer.h"

#include <cstring>

namespace bench {

std::uint32_t CopyText(std::string_view text, char* buffer, std::uint32_t size) {
  const auto needed = static_cast<std::uint32_t>(text.size() + 1);
  if (buffer == nullptr || size == 0) {
    return needed;
  }
  const std::size_t length = size >= needed ? text.size() : 0;
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
  return needed;
}

}  // namespace bench
