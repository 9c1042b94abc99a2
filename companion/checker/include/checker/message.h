#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "checker/recording.h"

// Messages of the protocol, taken apart. Pure functions.
namespace checker {

// A message as it passed, without its header.
struct Message {
  std::uint32_t type = 0;
  Bytes payload;
  Nanoseconds begun = 0;  // its first byte was there
  Nanoseconds ended = 0;  // its last byte was there
};

// Cuts what passed on one pipe into messages, whatever pieces it passed in.
class MessageCutter {
 public:
  // The messages that these bytes complete.
  std::vector<Message> Take(std::span<const std::uint8_t> bytes, Nanoseconds when);

  // The stream is lost: this length was announced, which is over the protocol's limit.
  [[nodiscard]] std::optional<std::uint32_t> TooLong() const { return tooLong_; }
  // Bytes of a message that is not whole, and since when they are there.
  [[nodiscard]] std::size_t Unfinished() const { return buffer_.size(); }
  [[nodiscard]] Nanoseconds UnfinishedSince() const { return begun_; }

 private:
  [[nodiscard]] std::optional<Message> Next(Nanoseconds when);

  Bytes buffer_;
  Nanoseconds begun_ = 0;
  std::optional<std::uint32_t> tooLong_;
};

// The type's name, or its number when the protocol has no such type.
[[nodiscard]] std::string TypeName(std::uint32_t type);
// Whether a companion sends such messages.
[[nodiscard]] bool IsToDriver(std::uint32_t type);

// Bytes of payload that the type, and in a TrackingUpdate the pose format, need at least.
[[nodiscard]] std::size_t NeededBytes(const Message& message);
// The code at the end of a TrackingUpdate; nothing when the message is another or has no room for it.
[[nodiscard]] std::optional<std::uint32_t> PoseFormat(const Message& message);
[[nodiscard]] bool IsKnownPoseFormat(std::uint32_t format);

// The floating-point numbers that the driver takes from a message that is long enough.
[[nodiscard]] std::vector<double> Numbers(const Message& message);
// How far the length of each rotation vector in it is from 1, the worst of them; 0 for messages without a rotation.
[[nodiscard]] double LengthError(const Message& message);

// The fields by name, as far as the payload goes.
[[nodiscard]] nlohmann::ordered_json Fields(const Message& message);

}  // namespace checker
