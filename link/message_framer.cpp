#include "link/message_framer.h"

#include <cstring>

namespace ombrel {

MessageFramer::MessageFramer() : buffer_(std::make_unique<std::byte[]>(kCapacity)) {}

void MessageFramer::Reset() {
  begin_ = 0;
  end_ = 0;
}

std::span<std::byte> MessageFramer::FreeSpace() {
  if (begin_ == end_) {
    Reset();
  } else if (begin_ != 0) {
    // Only the beginning of one message is left here, so that this moves few bytes, and seldom.
    std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  return {buffer_.get() + end_, kCapacity - end_};
}

MessageFramer::Result MessageFramer::Next(Message& message) {
  const std::span<const std::byte> bytes(buffer_.get() + begin_, end_ - begin_);
  // The length is judged as soon as it is there, for a message too long may never come to an end.
  if (bytes.size() < sizeof(std::uint32_t)) return Result::kNeedMore;
  const auto length = ReadRecord<std::uint32_t>(bytes);
  if (length > kMaxPayload) return Result::kTooLong;
  if (bytes.size() < sizeof(LinkMessageHeader) + length) return Result::kNeedMore;
  message.type = ReadRecord<LinkMessageHeader>(bytes).type;
  message.payload = bytes.subspan(sizeof(LinkMessageHeader), length);
  begin_ += sizeof(LinkMessageHeader) + length;
  return Result::kMessage;
}

}  // namespace ombrel
