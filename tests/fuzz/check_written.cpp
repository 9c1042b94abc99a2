#include "check_written.h"

#include <algorithm>
#include <cstdint>

#include "stream_model.h"
#include "support/bytes.h"

namespace ombrel::test {
namespace {

bool AreZero(std::span<const std::byte> bytes) {
  return std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{0}; });
}

bool IsNameCharacter(std::byte byte) {
  const int c = std::to_integer<int>(byte);
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string WrongAnnouncement(std::span<const std::byte> payload) {
  if (payload.size() != 76) return "an announcement of another size";
  if (ReadU32(payload, 0) != 4660 || ReadU32(payload, 4) != 0x40000002 || ReadU32(payload, 8) != 0x40000006)
    return "wrong handles";
  if (!std::ranges::all_of(payload.subspan(12, 58), IsNameCharacter)) return "a wrong name";
  return AreZero(payload.subspan(70)) ? "" : "an announcement with bytes that say nothing";
}

std::string WrongPulse(std::span<const std::byte> payload, const StreamModel& model) {
  if (payload.size() != 12) return "a haptic pulse of another size";
  if (!model.KnowsController(ReadU32(payload, 0))) return "a haptic pulse for nobody";
  if (ReadU32(payload, 8) != 3000) return "a haptic pulse of another length, or with bytes that say nothing";
  return {};
}

}  // namespace

std::string CheckWritten(std::span<const std::byte> bytes, const StreamModel& model) {
  int announcements = 0;
  while (!bytes.empty()) {
    if (bytes.size() < 8 || bytes.size() < 8 + std::size_t{ReadU32(bytes, 0)}) return "half a message was written";
    const std::span<const std::byte> payload = bytes.subspan(8, ReadU32(bytes, 0));
    const std::uint32_t type = ReadU32(bytes, 4);
    if (type != 2 && type != 11) return "a message of type " + std::to_string(type) + " was written";
    const std::string wrong = type == 2 ? WrongAnnouncement(payload) : WrongPulse(payload, model);
    if (!wrong.empty()) return wrong;
    if (type == 2 && ++announcements > 1) return "two announcements";
    bytes = bytes.subspan(8 + payload.size());
  }
  // Frames were presented as long as there was something to read.
  return announcements == 1 ? "" : "no announcement";
}

}  // namespace ombrel::test
