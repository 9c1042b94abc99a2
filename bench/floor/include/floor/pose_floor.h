#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace bench::floor {

// What publishing a head pose cannot do without: the bytes into a record of one's own, one product of quaternions,
// normalised, and the record out to where others read it. For one thread.
class PoseFloor {
 public:
  // As large as a record that holds two orientations, angular velocity, time, position and state.
  struct Record {
    std::array<float, 4> orientation{0, 0, 0, 1};
    std::array<float, 4> rawOrientation{0, 0, 0, 1};
    std::array<std::byte, 64> rest{};
  };
  static_assert(sizeof(Record) == 96);

  // `bytes` are a whole record as it came in.
  void Publish(std::span<const std::byte, sizeof(Record)> bytes);
  // The same for an orientation that came in some other way: x, y, z, w.
  void Publish(const std::array<float, 4>& orientation);
  void SetOffset(const std::array<float, 4>& offset) { offset_ = offset; }
  [[nodiscard]] const Record& Published() const { return published_; }

 private:
  void Publish();

  Record working_;
  Record published_;
  std::array<float, 4> offset_{0, 0, 0, 1};
};

}  // namespace bench::floor
