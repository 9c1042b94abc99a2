#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace bench {

using Bytes = std::vector<std::uint8_t>;

template <typename Value>
concept WireInteger = std::unsigned_integral<Value>;

// Appends little-endian fields to a byte vector.
class ByteWriter {
 public:
  template <WireInteger Value>
  void Put(Value value) {
    for (std::size_t i = 0; i < sizeof(Value); ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  void PutFloat(float value) { Put(std::bit_cast<std::uint32_t>(value)); }
  void PutDouble(double value) { Put(std::bit_cast<std::uint64_t>(value)); }
  void PutZeros(std::size_t count) { bytes_.resize(bytes_.size() + count, 0); }
  void PutBytes(std::span<const std::uint8_t> bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

  std::size_t Size() const { return bytes_.size(); }
  Bytes Take() { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

// Reads little-endian fields from a span in order. Reading past the end yields zeros and clears Good().
class ByteReader {
 public:
  explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  template <WireInteger Value>
  Value Get() {
    Value value = 0;
    if (!Skip(sizeof(Value))) return value;
    for (std::size_t i = 0; i < sizeof(Value); ++i) {
      const std::uint64_t byte = bytes_[position_ - sizeof(Value) + i];
      value = static_cast<Value>(value | static_cast<Value>(byte << (8 * i)));
    }
    return value;
  }
  float GetFloat() { return std::bit_cast<float>(Get<std::uint32_t>()); }
  double GetDouble() { return std::bit_cast<double>(Get<std::uint64_t>()); }

  bool Skip(std::size_t count) {
    if (count > bytes_.size() - position_) {
      position_ = bytes_.size();
      good_ = false;
      return false;
    }
    position_ += count;
    return true;
  }

  bool Good() const { return good_; }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t position_ = 0;
  bool good_ = true;
};

}  // namespace bench
