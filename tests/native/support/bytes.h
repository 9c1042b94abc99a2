#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace ombrel::test {

// Bytes of a message, put together one field after the other, little-endian by shifts and not by copying memory.
class Bytes {
 public:
  Bytes& U8(std::uint8_t value);
  Bytes& U16(std::uint16_t value);
  Bytes& U32(std::uint32_t value);
  Bytes& U64(std::uint64_t value);
  Bytes& F32(std::initializer_list<float> values);
  Bytes& F64(double value);
  Bytes& Fill(std::size_t count, std::uint8_t value = 0);
  Bytes& Append(std::span<const std::byte> bytes);

  [[nodiscard]] const std::vector<std::byte>& Get() const { return bytes_; }
  [[nodiscard]] std::size_t Size() const { return bytes_.size(); }
  operator std::span<const std::byte>() const { return bytes_; }

 private:
  Bytes& Little(std::uint64_t value, std::size_t size);

  std::vector<std::byte> bytes_;
};

// A number of the type's size at an offset, little-endian.
template <typename Number>
[[nodiscard]] Number ReadLittle(std::span<const std::byte> bytes, std::size_t offset) {
  Number number = 0;
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    number |= static_cast<Number>(std::to_integer<Number>(bytes[offset + i]) << (8 * i));
  }
  return number;
}

[[nodiscard]] inline std::uint32_t ReadU32(std::span<const std::byte> bytes, std::size_t offset) {
  return ReadLittle<std::uint32_t>(bytes, offset);
}

// Header and payload.
[[nodiscard]] Bytes Framed(std::uint32_t type, std::span<const std::byte> payload);

}  // namespace ombrel::test
