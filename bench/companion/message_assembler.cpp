#include "companion/message_assembler.h"

namespace bench {

void MessageAssembler::Feed(std::span<const std::uint8_t> bytes) {
  buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(start_));
  start_ = 0;
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

std::optional<Message> MessageAssembler::Next() {
  if (broken_ || Pending() < kHeaderBytes) return std::nullopt;
  const std::span<const std::uint8_t> bytes = std::span(buffer_).subspan(start_);
  ByteReader header(bytes);
  const auto length = header.Get<std::uint32_t>();
  const auto type = header.Get<std::uint32_t>();
  if (length > kLargestPayload) {
    broken_ = true;
    return std::nullopt;
  }
  if (bytes.size() < kHeaderBytes + length) return std::nullopt;
  const auto payload = bytes.subspan(kHeaderBytes, length);
  start_ += kHeaderBytes + length;
  return Message{type, Bytes(payload.begin(), payload.end())};
}

}  // namespace bench
