#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

// Structures of ombrel/protocol.h as bytes, and back.
namespace companion {

using Bytes = std::vector<std::uint8_t>;

// The bytes of a structure, as long as it lives.
template <typename Record>
std::span<const std::uint8_t> AsBytes(const Record& record) {
  static_assert(std::is_trivially_copyable_v<Record>);
  return {reinterpret_cast<const std::uint8_t*>(&record), sizeof(record)};
}

// The structure that `bytes` begin with, wherever they lie; nothing when they are too few.
template <typename Record>
std::optional<Record> ReadAs(std::span<const std::uint8_t> bytes) {
  static_assert(std::is_trivially_copyable_v<Record>);
  if (bytes.size() < sizeof(Record)) return std::nullopt;
  Record record;
  std::memcpy(static_cast<void*>(&record), bytes.data(), sizeof(record));
  return record;
}

}  // namespace companion
