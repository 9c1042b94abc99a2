#pragma once

#include <optional>
#include <span>

#include "companion/messages.h"

namespace companion {

// Cuts a byte stream into messages, whatever pieces it arrives in. For one thread.
class MessageAssembler {
 public:
  void Feed(std::span<const std::uint8_t> bytes);

  // The next whole message, or nothing until more bytes come.
  // A header that announces more than kLargestPayload breaks the stream for good.
  std::optional<Message> Next();

  bool Broken() const { return broken_; }
  // Bytes fed that belong to no whole message yet.
  std::size_t Pending() const { return buffer_.size() - start_; }

 private:
  Bytes buffer_;
  std::size_t start_ = 0;
  bool broken_ = false;
};

}  // namespace companion
