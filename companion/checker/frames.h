#pragma once

#include <array>
#include <map>
#include <optional>
#include <vector>

#include "checker/session.h"

// What the judge and the figures both need to know of the textures.
namespace checker {

// The textures of a connection, once they were announced.
struct Announcement {
  Nanoseconds when = 0;
  std::array<std::uint32_t, 2> handles = {};
};
[[nodiscard]] std::optional<Announcement> AnnouncementOf(const Connection& connection);

// The driver's frame period, which a FramerateUpdate changes.
class FramePeriods {
 public:
  explicit FramePeriods(const Session& session);

  [[nodiscard]] Nanoseconds At(Nanoseconds when) const;

 private:
  std::map<Nanoseconds, Nanoseconds> since_;
};

// A frame that the companion has read. Empty `handedOver`: the driver has given nothing back since this texture was read
// before.
struct ReadFrame {
  const Hold* hold = nullptr;
  std::optional<Nanoseconds> handedOver;
};
// In their order; a texture that was read in a hold is a frame, however many copies it took.
[[nodiscard]] std::vector<ReadFrame> ReadFrames(const Session& session);

}  // namespace checker
