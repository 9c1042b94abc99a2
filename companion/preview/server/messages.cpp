#include "preview/messages.h"

#include <bit>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>

namespace preview {
namespace {

using nlohmann::json;

constexpr float kUnitTolerance = 0.01F;
constexpr std::uint32_t kSlowestDisplay = 10;
constexpr std::uint32_t kFastestDisplay = 240;

std::optional<std::uint32_t> Count(const json& message, const char* key) {
  const auto found = message.find(key);
  if (found == message.end() || !found->is_number_unsigned()) return std::nullopt;
  const auto value = found->get<std::uint64_t>();
  if (value > UINT32_MAX) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

// A finite number from `least` to `most`.
std::optional<float> Number(const json& value, float least, float most) {
  if (!value.is_number()) return std::nullopt;
  const auto number = value.get<double>();
  if (!(number >= static_cast<double>(least) && number <= static_cast<double>(most))) return std::nullopt;
  return static_cast<float>(number);
}

template <std::size_t Size>
std::optional<std::array<float, Size>> Numbers(const json& message, const char* key) {
  const auto found = message.find(key);
  if (found == message.end() || !found->is_array() || found->size() != Size) return std::nullopt;
  std::array<float, Size> numbers{};
  for (std::size_t i = 0; i < Size; ++i) {
    const auto number = Number((*found)[i], -1 - kUnitTolerance, 1 + kUnitTolerance);
    if (!number) return std::nullopt;
    numbers[i] = *number;
  }
  return numbers;
}

// The bits of a list of button names; nothing when one is not known.
std::optional<std::uint64_t> Buttons(const json& message, const char* key) {
  static const std::map<std::string, unsigned, std::less<>> kBits = {
      {"system", 0}, {"menu", 1}, {"grip", 2}, {"trackpad", 32}, {"trigger", 33}};
  const auto found = message.find(key);
  if (found == message.end() || !found->is_array()) return std::nullopt;
  std::uint64_t bits = 0;
  for (const json& name : *found) {
    const auto bit = name.is_string() ? kBits.find(name.get_ref<const std::string&>()) : kBits.end();
    if (bit == kBits.end()) return std::nullopt;
    bits |= std::uint64_t{1} << bit->second;
  }
  return bits;
}

std::optional<PageMessage> ParseHead(const json& message) {
  const auto number = Count(message, "number");
  auto orientation = Numbers<4>(message, "orientation");
  if (!number || !orientation) return std::nullopt;
  float squares = 0;
  for (const float part : *orientation) squares += part * part;
  const float length = std::sqrt(squares);
  if (std::abs(length - 1) > kUnitTolerance) return std::nullopt;
  for (float& part : *orientation) part /= length;
  return HeadMessage{*number, *orientation};
}

std::optional<PageMessage> ParseReceived(const json& message) {
  const auto frame = Count(message, "frame");
  if (!frame) return std::nullopt;
  return ReceivedMessage{*frame};
}

std::optional<PageMessage> ParseRate(const json& message) {
  const auto rate = Count(message, "framesPerSecond");
  if (!rate || *rate < kSlowestDisplay || *rate > kFastestDisplay) return std::nullopt;
  return RateMessage{*rate};
}

std::optional<PageMessage> ParseController(const json& message) {
  const auto id = Count(message, "id");
  const auto pressed = Buttons(message, "pressed"), touched = Buttons(message, "touched");
  const auto trackpad = Numbers<2>(message, "trackpad");
  const auto trigger = message.contains("trigger") ? Number(message["trigger"], 0, 1) : std::nullopt;
  if (!id || *id < 1 || *id > kControllers || !pressed || !touched || !trackpad || !trigger) return std::nullopt;
  return ControllerMessage{*id, *pressed, *touched, *trackpad, *trigger};
}

void PutWord(std::vector<std::uint8_t>& bytes, std::uint32_t word) {
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(word >> shift));
}

}  // namespace

std::optional<PageMessage> ParsePageMessage(std::string_view text) {
  const json message = json::parse(text, nullptr, false);
  if (!message.is_object()) return std::nullopt;
  const auto type = message.find("type");
  if (type == message.end() || !type->is_string()) return std::nullopt;
  const auto& name = type->get_ref<const std::string&>();
  if (name == "head") return ParseHead(message);
  if (name == "received") return ParseReceived(message);
  if (name == "rate") return ParseRate(message);
  if (name == "recenter") return RecenterMessage{};
  if (name == "controller") return ParseController(message);
  return std::nullopt;
}

std::string EncodeStatus(const Status& status) {
  return json{{"type", "status"}, {"driver", status.driver}, {"leads", status.leads}}.dump();
}

std::string EncodePulse(std::uint32_t controllerId, std::uint32_t durationMicroseconds) {
  return json{{"type", "pulse"}, {"controller", controllerId}, {"milliseconds", durationMicroseconds / 1000.0}}.dump();
}

std::vector<std::uint8_t> EncodeFrame(const Frame& frame) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kFrameHeaderBytes + frame.jpeg.size());
  PutWord(bytes, frame.number);
  PutWord(bytes, frame.poseNumber);
  PutWord(bytes, std::bit_cast<std::uint32_t>(frame.poseToFrameMs));
  PutWord(bytes, std::bit_cast<std::uint32_t>(frame.encodeMs));
  bytes.insert(bytes.end(), frame.jpeg.begin(), frame.jpeg.end());
  return bytes;
}

}  // namespace preview
