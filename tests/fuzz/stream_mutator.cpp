#include "stream_mutator.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

#include "support/bytes.h"

namespace ombrel::test {
namespace {

void PutU32(std::span<std::byte> bytes, std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<std::byte>(value >> (8 * i) & 0xFFU);
}

constexpr float kInfinity = std::numeric_limits<float>::infinity();

}  // namespace

StreamMutator::Messages StreamMutator::Parse(std::span<const std::byte> stream) {
  Messages messages;
  while (stream.size() >= 8) {
    const std::size_t told = ReadU32(stream, 0), there = std::min(told, stream.size() - 8);
    const std::span<const std::byte> payload = stream.subspan(8, there);
    const auto lie = static_cast<std::uint32_t>(told - there);
    messages.push_back({ReadU32(stream, 4), {payload.begin(), payload.end()}, lie});
    stream = stream.subspan(8 + there);
  }
  return messages;
}

StreamMutator::Stream StreamMutator::Write(const Messages& messages, std::size_t most) {
  Stream stream;
  for (const Message& message : messages) {
    const std::size_t header = stream.size();
    stream.resize(header + 8);
    PutU32(stream, header, static_cast<std::uint32_t>(message.payload.size()) + message.lie);
    PutU32(stream, header + 4, message.type);
    stream.insert(stream.end(), message.payload.begin(), message.payload.end());
  }
  stream.resize(std::min(stream.size(), most));
  return stream;
}

StreamMutator::Stream StreamMutator::Mutate(std::span<const std::byte> stream, std::size_t most) {
  Stream changed(stream.begin(), stream.end());
  if (Below(16) == 0) {
    raw_(changed, most);
    return changed;
  }
  Messages messages = Parse(stream);
  for (std::size_t changes = 1 + Below(4); changes > 0; --changes) Change(messages);
  changed = Write(messages, most);
  // A connection that ends anywhere.
  if (Below(32) == 0) changed.resize(Below(changed.size() + 1));
  return changed;
}

StreamMutator::Stream StreamMutator::Cross(std::span<const std::byte> a, std::span<const std::byte> b,
                                           std::size_t most) {
  const Messages left = Parse(a), right = Parse(b);
  Messages both;
  std::size_t l = 0, r = 0;
  while (l < left.size() || r < right.size()) {
    const bool fromLeft = r == right.size() || (l < left.size() && Below(2) == 0);
    const Message& next = fromLeft ? left[l++] : right[r++];
    if (Below(4) != 0) both.push_back(next);
  }
  return Write(both, most);
}

void StreamMutator::Change(Messages& messages) {
  if (messages.empty() || Below(4) == 0) {
    messages.insert(messages.begin() + static_cast<std::ptrdiff_t>(Below(messages.size() + 1)), NewMessage());
    return;
  }
  const std::size_t chosen = Below(messages.size());
  Message& message = messages[chosen];
  switch (Below(12)) {
    case 0:
      messages.erase(messages.begin() + static_cast<std::ptrdiff_t>(chosen));
      return;
    case 1:
      messages.push_back(Message(message));
      return;
    case 2:
      std::swap(message, messages[Below(messages.size())]);
      return;
    case 3:
      message.type = OneOf<std::uint32_t>({2, 4, 8, 9, 10, 11, 14, static_cast<std::uint32_t>(Below(20))});
      return;
    case 4:  // a length that is not right: behind it nothing stands where it seems to
      message.lie = OneOf<std::uint32_t>({0, 0, 1, 0xFFFFFFFF, 4, 65536, 65537, static_cast<std::uint32_t>(random_())});
      return;
    case 5:  // right to the byte, but shorter or longer than the message's kind needs
      message.payload.resize(Below(message.payload.size() + 9));
      return;
    default:
      ChangePayload(message);
  }
}

void StreamMutator::ChangePayload(Message& message) {
  const bool isPose = message.type == 4 && message.payload.size() >= 4;
  if (isPose && Below(3) == 0) {
    const auto format = OneOf<std::uint32_t>({0, 1, 2, 3, 4, 5, 6, 50, 254, 2147483647, 7, 49});
    PutU32(message.payload, message.payload.size() - 4, format);
  } else if (Below(4) == 0) {
    const std::size_t size = message.payload.size();
    raw_(message.payload, size + Below(16));
  } else {
    ChangeNumber(message);
  }
}

void StreamMutator::ChangeNumber(Message& message) {
  if (message.payload.size() < 4) return;
  const std::size_t offset = Below(message.payload.size() / 4) * 4;
  const bool asBits = message.type == 10 && (offset < 16 || (offset >= 80 && offset < 104));
  const std::uint32_t bits = OneOf<std::uint32_t>({0, 1, 2, 3, 4, 0xFFFFFFFF, static_cast<std::uint32_t>(random_())});
  PutU32(message.payload, offset, asBits ? bits : FloatBits());
}

StreamMutator::Message StreamMutator::NewMessage() {
  switch (Below(8)) {
    case 0:
    case 1:
    case 2:
      return NewPose();
    case 3:
    case 4:
      return NewController();
    case 5: {
      Message rate{9, {}, 0};
      AppendU32(rate.payload, OneOf<std::uint32_t>({0, 1, 60, 72, 90, 0x80000000, 0xFFFFFFFF}));
      return rate;
    }
    case 6:
      return {OneOf<std::uint32_t>({8, 8, 8, 14}), Stream(Below(5)), 0};
    default:
      // Seldom a large one, for these take long.
      return {static_cast<std::uint32_t>(random_()), Stream(Below(64) == 0 ? 65536 - Below(3) : Below(40)), 0};
  }
}

StreamMutator::Message StreamMutator::NewPose() {
  const auto format = OneOf<std::uint32_t>({0, 1, 2, 2, 3, 4, 4, 5, 6, 50, 254, 2147483647, 7});
  const std::size_t numbers = format == 1 || format == 50 || format == 2147483647 ? 0
                              : format == 254                                     ? 1
                              : format == 5                                       ? 3
                              : format == 4                                       ? 7
                              : format == 2 || format == 3                        ? 9
                                                                                  : 12;
  Message pose{4, {}, 0};
  AppendFloats(pose.payload, numbers);
  if (format == 254) pose.payload[0] = static_cast<std::byte>(Below(5));
  AppendU32(pose.payload, format);
  return pose;
}

StreamMutator::Message StreamMutator::NewController() {
  Message record{10, {}, 0};
  AppendU32(record.payload, OneOf<std::uint32_t>({0, 1, 2, 3, 4, 0xFFFFFFFE, static_cast<std::uint32_t>(random_())}));
  AppendU32(record.payload, static_cast<std::uint32_t>(Below(5)));
  record.payload.resize(16);
  AppendFloats(record.payload, 12);
  record.payload.resize(88);
  for (int i = 0; i < 2; ++i) {
    AppendU32(record.payload, static_cast<std::uint32_t>(Below(16)));
    AppendU32(record.payload, static_cast<std::uint32_t>(Below(8)));
  }
  AppendFloats(record.payload, 4);
  record.payload.resize(144);
  AppendFloats(record.payload, 12);
  return record;
}

void StreamMutator::AppendU32(Stream& bytes, std::uint32_t value) {
  bytes.resize(bytes.size() + 4);
  PutU32(bytes, bytes.size() - 4, value);
}

void StreamMutator::AppendFloats(Stream& bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) AppendU32(bytes, FloatBits());
}

// Mostly such as a companion sends.
std::uint32_t StreamMutator::FloatBits() {
  const auto usual = static_cast<float>(Below(2001)) / 1000.0F - 1.0F;
  const float extreme = OneOf({0.0F, -0.0F, 1.0F, -1.0F, kInfinity, -kInfinity, 3.4e38F, -3.4e38F, 1e30F, 1e19F, 1e-19F,
                               1e-38F, 1e-45F, 1e-8F, std::numeric_limits<float>::quiet_NaN()});
  switch (Below(8)) {
    case 0:
      return std::bit_cast<std::uint32_t>(extreme);
    case 1:
      return std::bit_cast<std::uint32_t>(OneOf({0.0F, 1.0F, -1.0F}));
    case 2:
      return Below(8) == 0 ? static_cast<std::uint32_t>(random_()) * 2 : std::bit_cast<std::uint32_t>(100.0F * usual);
    default:
      return std::bit_cast<std::uint32_t>(usual);
  }
}

}  // namespace ombrel::test
