#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "page_rotation.h"

namespace ombrel::test {

// What a headset and its controllers must make of a companion's bytes, written from docs/protocol.md and not from the
// driver. The headset is activated as device 0; a controller whose id leaves 3 when divided by 4 never is, every other
// one at once, under the next number.
class StreamModel {
 public:
  // How a connection's bytes end.
  enum class End { kBetweenMessages, kInsideAMessage, kTooLong };

  // What is to be known of the orientation behind a "tracking" line. Rotations are there if they can be foretold.
  struct Orientation {
    bool changed = false;                      // published anew
    bool fromSensors = false;                  // the filter's, which is always a number
    std::optional<std::array<float, 4>> sent;  // as it stood in the message
    std::optional<Quat> raw;                   // before recentering
    std::optional<Quat> recentering{Quat{}};   // what is put on its left
  };

  // All bytes of one connection. What was learnt holds for the next one.
  End Take(std::span<const std::byte> bytes);

  // What reaches the runtime and the link's listeners, in order.
  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }
  // One for each "tracking" line.
  [[nodiscard]] const std::vector<Orientation>& Orientations() const { return orientations_; }
  [[nodiscard]] std::size_t Shutdowns() const { return shutdowns_; }
  [[nodiscard]] bool KnowsController(std::uint32_t id) const { return controllers_.contains(id); }

 private:
  using Payload = std::span<const std::byte>;
  struct Controller {
    std::uint32_t device = 0;  // 0: not activated
    std::uint64_t pressed = 0, touched = 0;
    std::array<float, 4> axes{};  // trackpad x, y, trigger x, y
  };

  void Message(std::uint32_t type, Payload payload);
  void TrackingUpdate(Payload payload);
  void Orient(std::uint32_t format, Payload payload);
  void Recenter();
  void ControllerUpdate(Payload payload);
  void Move(Controller& controller, Payload record);
  void Press(Controller& controller, Payload record);
  void Turn(Controller& controller, Payload record);

  std::vector<std::string> lines_;
  std::vector<Orientation> orientations_;
  std::size_t shutdowns_ = 0;

  std::array<float, 3> position_{0.0F, 1.7F, 0.0F}, shownPosition_{};
  std::uint32_t state_ = 0, shownState_ = 0;
  Orientation orientation_{.sent = std::array<float, 4>{0, 0, 0, 1}, .raw = Quat{}};
  std::map<std::uint32_t, Controller> controllers_;
  std::uint32_t devices_ = 0;
};

// The text of what a controller's record holds, whole.
[[nodiscard]] std::string RecordLine(std::span<const std::byte> record);

}  // namespace ombrel::test
