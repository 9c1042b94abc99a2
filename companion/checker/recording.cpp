#include "checker/recording.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace checker {
namespace {

constexpr std::array<std::uint8_t, 8> kMagic{'O', 'M', 'B', 'R', 'R', 'E', 'C', '1'};
constexpr std::size_t kHeaderBytes = 16;
constexpr std::size_t kEventBytes = 44;
// No call of the driver passes more at once.
constexpr std::size_t kMostBytes = 1 << 20;

template <std::unsigned_integral Value>
void Put(Bytes& bytes, Value value) {
  for (std::size_t i = 0; i < sizeof(Value); ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

template <std::unsigned_integral Value>
Value Get(std::span<const std::uint8_t> bytes, std::size_t offset) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < sizeof(Value); ++i) value |= std::uint64_t{bytes[offset + i]} << (8 * i);
  return static_cast<Value>(value);
}

}  // namespace

Bytes EncodeHeader(Side side, std::uint32_t processId) {
  Bytes bytes(kMagic.begin(), kMagic.end());
  Put(bytes, static_cast<std::uint32_t>(side));
  Put(bytes, processId);
  return bytes;
}

Bytes EncodeEvent(const Event& event) {
  Bytes bytes;
  bytes.reserve(kEventBytes + event.bytes.size());
  Put(bytes, static_cast<std::uint16_t>(event.kind));
  Put(bytes, static_cast<std::uint16_t>(event.pipe));
  Put(bytes, event.result);
  Put(bytes, static_cast<std::uint64_t>(event.start));
  Put(bytes, static_cast<std::uint64_t>(event.end));
  Put(bytes, event.subject);
  Put(bytes, event.timeoutMs);
  Put(bytes, event.key);
  Put(bytes, static_cast<std::uint32_t>(event.bytes.size()));
  bytes.insert(bytes.end(), event.bytes.begin(), event.bytes.end());
  return bytes;
}

void RecordingReader::Feed(std::span<const std::uint8_t> bytes) {
  buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(start_));
  start_ = 0;
  buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
  if (!side_ && !broken_ && buffer_.size() >= kHeaderBytes) TakeHeader();
}

void RecordingReader::TakeHeader() {
  const auto side = Get<std::uint32_t>(buffer_, kMagic.size());
  broken_ = !std::equal(kMagic.begin(), kMagic.end(), buffer_.begin()) || side > 1;
  if (broken_) return;
  side_ = static_cast<Side>(side);
  start_ = kHeaderBytes;
}

std::optional<Event> RecordingReader::Next() {
  const auto left = std::span<const std::uint8_t>(buffer_).subspan(start_);
  if (!side_ || left.size() < kEventBytes) return std::nullopt;
  const std::size_t count = Get<std::uint32_t>(left, 40);
  Event event;
  event.kind = static_cast<EventKind>(Get<std::uint16_t>(left, 0));
  broken_ = broken_ || count > kMostBytes || event.kind < EventKind::kPipeOpened || event.kind > EventKind::kEnded;
  if (broken_ || left.size() < kEventBytes + count) return std::nullopt;
  event.side = *side_;
  event.pipe = static_cast<Pipe>(Get<std::uint16_t>(left, 2));
  event.result = Get<std::uint32_t>(left, 4);
  event.start = static_cast<Nanoseconds>(Get<std::uint64_t>(left, 8));
  event.end = static_cast<Nanoseconds>(Get<std::uint64_t>(left, 16));
  event.subject = Get<std::uint32_t>(left, 24);
  event.timeoutMs = Get<std::uint32_t>(left, 28);
  event.key = Get<std::uint64_t>(left, 32);
  const auto bytes = left.subspan(kEventBytes, count);
  event.bytes.assign(bytes.begin(), bytes.end());
  start_ += kEventBytes + count;
  return event;
}

std::vector<Event> ReadRecording(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  const Bytes bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  RecordingReader reader;
  reader.Feed(bytes);
  std::vector<Event> events;
  while (auto event = reader.Next()) events.push_back(std::move(*event));
  if (reader.Broken()) throw std::runtime_error(file.string() + " is no recording, or is damaged");
  return events;
}

std::vector<Event> InOrder(std::vector<Event> events) {
  std::stable_sort(events.begin(), events.end(),
                   [](const Event& left, const Event& right) { return left.When() < right.When(); });
  return events;
}

}  // namespace checker
