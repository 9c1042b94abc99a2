#include "support/bytes.h"

#include <bit>

namespace ombrel::test {

Bytes& Bytes::U8(std::uint8_t value) { return Little(value, 1); }
Bytes& Bytes::U16(std::uint16_t value) { return Little(value, 2); }
Bytes& Bytes::U32(std::uint32_t value) { return Little(value, 4); }
Bytes& Bytes::U64(std::uint64_t value) { return Little(value, 8); }

Bytes& Bytes::F32(std::initializer_list<float> values) {
  for (const float value : values) U32(std::bit_cast<std::uint32_t>(value));
  return *this;
}

Bytes& Bytes::F64(double value) { return U64(std::bit_cast<std::uint64_t>(value)); }

Bytes& Bytes::Fill(std::size_t count, std::uint8_t value) {
  bytes_.insert(bytes_.end(), count, static_cast<std::byte>(value));
  return *this;
}

Bytes& Bytes::Append(std::span<const std::byte> bytes) {
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return *this;
}

Bytes& Bytes::Little(std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes_.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFFU));
  return *this;
}

Bytes Framed(std::uint32_t type, std::span<const std::byte> payload) {
  Bytes message;
  message.U32(static_cast<std::uint32_t>(payload.size())).U32(type).Append(payload);
  return message;
}

}  // namespace ombrel::test
