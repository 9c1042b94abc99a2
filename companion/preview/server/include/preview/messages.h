#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What travels over the pages' WebSocket, as docs/preview.md states it. Pure functions.
namespace preview {

// The head as a page saw it: a unit quaternion x, y, z, w in the axes of the companion protocol.
struct HeadMessage {
  std::uint32_t number = 0;  // the page's own count, which comes back with the frame that shows the pose; 0 for none
  std::array<float, 4> orientation = {0, 0, 0, 1};
};

// A frame has arrived at the page.
struct ReceivedMessage {
  std::uint32_t frame = 0;
};

// The refresh rate of the page's display: 10 to 240 a second.
struct RateMessage {
  std::uint32_t framesPerSecond = 0;
};

struct RecenterMessage {};

inline constexpr std::uint32_t kControllers = 2;  // ids 1, the left one, and 2, the right one

// All inputs of one controller. Buttons are bits of the companion protocol's ControllerUpdate.
struct ControllerMessage {
  std::uint32_t id = 1;
  std::uint64_t pressed = 0;
  std::uint64_t touched = 0;
  std::array<float, 2> trackpad = {};  // -1 to 1, x to the right, y upwards
  float trigger = 0;                   // 0 to 1
};

using PageMessage = std::variant<HeadMessage, ReceivedMessage, RateMessage, RecenterMessage, ControllerMessage>;

// Nothing when the text is not one of the messages, or a value lies outside its range.
[[nodiscard]] std::optional<PageMessage> ParsePageMessage(std::string_view text);

struct Status {
  bool driver = false;  // the driver is connected
  bool leads = false;   // this page's head or controllers are the ones that count
};

[[nodiscard]] std::string EncodeStatus(const Status& status);
[[nodiscard]] std::string EncodePulse(std::uint32_t controllerId, std::uint32_t durationMicroseconds);

// One compressed picture of both eyes, and what the pages show beside it.
struct Frame {
  std::uint32_t number = 0;      // counts every frame that the driver handed over, shown or not
  std::uint32_t poseNumber = 0;  // of the HeadMessage that it was rendered with; 0 when that is not known
  float poseToFrameMs = 0;       // from that pose's writing to the frame's arrival: the driver and the runtime
  float encodeMs = 0;            // the compression
  std::vector<std::uint8_t> jpeg;
};

inline constexpr std::size_t kFrameHeaderBytes = 16;

[[nodiscard]] std::vector<std::uint8_t> EncodeFrame(const Frame& frame);

}  // namespace preview
