#include "companion/message_assembler.h"

namespace companion {

void MessageAssembler::Feed(std::span<const std::uint8_t> bytes) {
  buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(start_));
  start_ = 0;
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

std::optional<Message> MessageAssembler::Next() {
  const std::span<const std::uint8_t> bytes = std::span(buffer_).subspan(start_);
  const auto header = ReadAs<OmbrelMessageHeader>(bytes);
  if (broken_ || !header) return std::nullopt;
  if (header->length > kLargestPayload) {
    broken_ = true;
    return std::nullopt;
  }
  if (bytes.size() < kHeaderBytes + header->length) return std::nullopt;
  const auto payload = bytes.subspan(kHeaderBytes, header->length);
  start_ += kHeaderBytes + header->length;
  return Message{header->type, Bytes(payload.begin(), payload.end())};
}

}  // namespace companion
