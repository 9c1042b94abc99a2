#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "link/orientation_filter.h"
#include "link/quaternion.h"

namespace ombrel {

// The head as the link knows it.
struct LinkPoseRecord {
  Quaternion orientation;                  // recentred
  Quaternion rawOrientation;               // as the companion sent it, or as the filter has it
  std::array<float, 4> angularVelocity{};  // radians per second about x, y, z; no message fills it
  std::array<std::byte, 8> reserved{};
  std::uint64_t timestamp = 0;        // milliseconds, when the record was published
  Vector3 position;                   // metres
  float spare = 0.0F;                 // stored for the companion, never used
  std::array<std::byte, 8> spare8{};  // likewise
  std::uint32_t trackingState = 0;    // 0 tracking, 1 out of range, 2 not connected
};

inline constexpr float kDefaultHeadHeightMeters = 1.7F;

// Turns the payloads of TrackingUpdate messages into head poses. Belongs to the link's reader thread.
class HeadPoseTracker {
 public:
  enum class Outcome {
    kTooShort,   // shorter than its format needs: nothing was changed
    kStored,     // taken in, to show with the next pose that is published
    kPublished,  // the record is to be published
  };

  explicit HeadPoseTracker(std::uint64_t timestampMs);

  [[nodiscard]] Outcome Apply(std::span<const std::byte> payload, std::uint64_t timestampMs);

  // What the head faces now becomes the front, from the next published pose on.
  void Recenter();

  // The working record; right after kPublished it is what is to be published.
  [[nodiscard]] const LinkPoseRecord& Record() const { return record_; }

 private:
  struct Format;
  [[nodiscard]] static const Format& FormatOf(std::uint32_t code);
  void DecodeNothing(std::span<const std::byte> /*pose*/) {}
  void DecodeMatrix(std::span<const std::byte> pose);
  void DecodeSensors(std::span<const std::byte> pose);
  void DecodeEulerAngles(std::span<const std::byte> pose);
  void DecodeQuaternion(std::span<const std::byte> pose);
  void DecodePosition(std::span<const std::byte> pose);
  void DecodePoseMatrix(std::span<const std::byte> pose);
  void DecodeRecenter(std::span<const std::byte> /*pose*/) { Recenter(); }
  void DecodeTrackingState(std::span<const std::byte> pose);
  void ClearMotion();

  LinkPoseRecord record_;
  Quaternion recenterOffset_;
  OrientationFilter filter_;
};

}  // namespace ombrel
