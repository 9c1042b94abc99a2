#include "stream_model.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "line.h"
#include "runtime/fake_driver_input.h"
#include "runtime/fake_properties.h"
#include "support/bytes.h"

namespace ombrel::test {
namespace {

std::uint64_t U64(std::span<const std::byte> bytes, std::size_t offset) {
  return ReadLittle<std::uint64_t>(bytes, offset);
}
float F32(std::span<const std::byte> bytes, std::size_t offset) { return std::bit_cast<float>(ReadU32(bytes, offset)); }
double F64(std::span<const std::byte> bytes, std::size_t offset) { return std::bit_cast<double>(U64(bytes, offset)); }

template <std::size_t kCount>
std::array<float, kCount> Floats(std::span<const std::byte> bytes, std::size_t offset) {
  std::array<float, kCount> floats{};
  for (std::size_t i = 0; i < kCount; ++i) floats[i] = F32(bytes, offset + 4 * i);
  return floats;
}

// The table of pose formats: what each needs, its code included.
std::size_t LeastSize(std::uint32_t format) {
  static const std::map<std::uint32_t, std::size_t> sizes{{1, 4},  {2, 40}, {3, 40},  {4, 32},
                                                          {5, 16}, {50, 4}, {254, 5}, {2147483647, 4}};
  const auto found = sizes.find(format);
  return found != sizes.end() ? found->second : 52;
}

// Result, whether the pose is valid, whether the device is connected.
Line& Status(Line& line, std::uint32_t trackingState) {
  if (trackingState == 1) return line << 201 << 0 << 1;
  if (trackingState == 2) return line << 1 << 0 << 0;
  return line << 200 << 1 << 1;
}

constexpr std::array<std::pair<int, const char*>, 5> kButtons{{{0, "/input/system/click"},
                                                               {1, "/input/application_menu/click"},
                                                               {2, "/input/grip/click"},
                                                               {32, "/input/trackpad/click"},
                                                               {33, "/input/trigger/click"}}};

std::uint64_t InputOf(std::uint32_t device, const char* path) {
  return bench::FakeDriverInput::HandleOf(bench::FakeProperties::ContainerOf(device), path);
}

}  // namespace

std::string RecordLine(std::span<const std::byte> record) {
  std::uint64_t sum = 0xCBF29CE484222325U;
  for (const std::byte byte : record) sum = (sum ^ std::to_integer<std::uint64_t>(byte)) * 0x100000001B3U;
  return Line("controller") << record.size() << sum;
}

StreamModel::End StreamModel::Take(std::span<const std::byte> bytes) {
  while (bytes.size() >= 4) {
    const std::size_t length = ReadU32(bytes, 0);
    if (length > 65536) return End::kTooLong;
    if (bytes.size() < 8 + length) return End::kInsideAMessage;
    Message(ReadU32(bytes, 4), bytes.subspan(8, length));
    bytes = bytes.subspan(8 + length);
  }
  return bytes.empty() ? End::kBetweenMessages : End::kInsideAMessage;
}

void StreamModel::Message(std::uint32_t type, Payload payload) {
  if (type == 4) TrackingUpdate(payload);
  if (type == 8) Recenter();
  if (type == 9 && payload.size() >= 4) {
    const std::uint32_t rate = ReadU32(payload, 0);
    lines_.push_back(Line("frequency") << static_cast<float>(static_cast<std::int32_t>(rate)));
    lines_.push_back(Line("framerate") << rate);
  }
  if (type == 10 && payload.size() >= 192) ControllerUpdate(payload.first(192));
  if (type == 14) ++shutdowns_;
}

void StreamModel::TrackingUpdate(Payload payload) {
  if (payload.size() < 4) return;
  const std::uint32_t format = ReadU32(payload, payload.size() - 4);
  if (payload.size() < LeastSize(format)) return;
  if (format == 3) position_ = Floats<3>(payload, 12);
  if (format == 4) position_ = Floats<3>(payload, 16);
  if (format == 5) position_ = Floats<3>(payload, 0);
  if (format == 6) position_ = {F32(payload, 12), F32(payload, 28), F32(payload, 44)};
  if (format == 254) state_ = std::to_integer<std::uint32_t>(payload[0]);
  Orient(format, payload);
  if (format != 5) {
    shownPosition_ = position_;
    shownState_ = state_;
  }
  Line head("head");
  lines_.push_back(Status(head.All(shownPosition_), shownState_));
  lines_.push_back(Line("tracking").All(shownPosition_) << shownState_);
  orientations_.push_back(orientation_);
  orientations_.back().changed = format != 5;
}

void StreamModel::Orient(std::uint32_t format, Payload payload) {
  const bool kept = format == 1 || format == 5 || format == 254 || format == 2147483647;
  if (kept) return;
  if (format == 50) return Recenter();
  orientation_.fromSensors = format == 2;
  orientation_.sent.reset();
  orientation_.raw.reset();
  if (format == 2) return;
  if (format == 3) {
    orientation_.raw = RotationOfAngles(Floats<3>(payload, 0));
  } else if (format == 4) {
    orientation_.sent = Floats<4>(payload, 0);
    orientation_.raw = RotationOf(*orientation_.sent);
  } else if (format == 6) {
    orientation_.raw = RotationOfPoseMatrix(Floats<12>(payload, 0));
  } else {
    orientation_.raw = RotationOfMatrix(Floats<12>(payload, 0));
  }
}

void StreamModel::Recenter() {
  orientation_.recentering = orientation_.raw ? RecenteringAt(*orientation_.raw) : std::nullopt;
}

void StreamModel::ControllerUpdate(Payload record) {
  const std::uint32_t id = ReadU32(record, 0);
  const auto [entry, isNew] = controllers_.try_emplace(id);
  if (isNew) {
    lines_.push_back(Line("added") << 2);
    ++devices_;
    if (id % 4 != 3) {
      entry->second.device = devices_;
      // Where the trackpad rests until it moves.
      lines_.push_back(Line("scalar") << InputOf(devices_, "/input/trackpad/x") << 0.8F);
    }
  } else if (entry->second.device != 0) {
    Move(entry->second, record);
    Press(entry->second, record);
    Turn(entry->second, record);
  }
  lines_.push_back(RecordLine(record));
}

void StreamModel::Move(Controller& controller, Payload record) {
  Line line("pose");
  line << controller.device << F32(record, 28) << F32(record, 44) << F32(record, 60);
  for (std::size_t offset = 144; offset < 192; offset += 8) line << F64(record, offset);
  lines_.push_back(Status(line, ReadU32(record, 4)));
}

void StreamModel::Press(Controller& controller, Payload record) {
  const std::uint64_t pressed = U64(record, 88), touched = U64(record, 96);
  for (const bool down : {true, false}) {
    for (const auto& [bit, path] : kButtons) {
      const bool now = (pressed >> bit & 1) != 0, before = (controller.pressed >> bit & 1) != 0;
      if (now != before && now == down) lines_.push_back(Line("boolean") << InputOf(controller.device, path) << now);
    }
  }
  const bool now = (touched >> 32 & 1) != 0, before = (controller.touched >> 32 & 1) != 0;
  if (now != before) lines_.push_back(Line("boolean") << InputOf(controller.device, "/input/trackpad/touch") << now);
  controller.pressed = pressed;
  controller.touched = touched;
}

void StreamModel::Turn(Controller& controller, Payload record) {
  const auto axes = Floats<4>(record, 104);
  const std::array<float, 4> before = std::exchange(controller.axes, axes);
  if (axes[0] != before[0] || axes[1] != before[1]) {
    lines_.push_back(Line("scalar") << InputOf(controller.device, "/input/trackpad/x") << axes[0]);
    lines_.push_back(Line("scalar") << InputOf(controller.device, "/input/trackpad/y") << axes[1]);
  }
  if (axes[2] != before[2] || axes[3] != before[3]) {
    lines_.push_back(Line("scalar") << InputOf(controller.device, "/input/trigger/value") << axes[2]);
  }
}

}  // namespace ombrel::test
