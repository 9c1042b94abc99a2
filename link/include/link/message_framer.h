#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "link/wire.h"

namespace ombrel {

// Cuts the companion's byte stream into messages, however the bytes come in: the reader fills FreeSpace, says how much
// came, and takes messages until there is none. Belongs to one thread. Allocates once, when it is made.
class MessageFramer {
 public:
  struct Message {
    std::uint32_t type = 0;
    std::span<const std::byte> payload;  // valid until the next call of FreeSpace
  };
  enum class Result { kMessage, kNeedMore, kTooLong };

  MessageFramer();

  // Forgets what an earlier connection left behind.
  void Reset();
  // Room for what comes next, never empty unless Next has said kTooLong.
  [[nodiscard]] std::span<std::byte> FreeSpace();
  void Filled(std::size_t bytes) { end_ += bytes; }

  // kTooLong: the payload announced is over kMaxPayload, and the stream cannot be followed any further.
  [[nodiscard]] Result Next(Message& message);

 private:
  static constexpr std::size_t kCapacity = sizeof(LinkMessageHeader) + kMaxPayload;

  std::unique_ptr<std::byte[]> buffer_;
  std::size_t begin_ = 0;  // first byte not taken yet
  std::size_t end_ = 0;    // behind the last byte that came
};

}  // namespace ombrel
