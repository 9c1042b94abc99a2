#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "link/wire.h"
#include "platform/pipe.h"
#include "platform/sync.h"
#include "platform/worker.h"

namespace ombrel {

// The pipe to the companion. Any thread may send: messages wait in a ring buffer, and a thread of the connection writes
// them, whole and in order, however long the companion takes to read. Nobody else waits for it, and sending allocates
// nothing.
class OutgoingPipe {
 public:
  // At most this many messages that may be dropped wait; one more place is kept for one that may not.
  static constexpr std::size_t kMostWaiting = 32;
  // A message that may be dropped is, unless its writing begins so soon after it was made.
  static constexpr std::int64_t kLifeMs = 250;
  // In place of that time: not to be dropped.
  static constexpr std::int64_t kKept = std::numeric_limits<std::int64_t>::max();

  // Connect thread only.
  bool Open() { return pipe_.Open(kPipeToCompanion, PipeClient::Direction::kWrite); }
  [[nodiscard]] bool IsOpen() const { return pipe_.IsOpen(); }
  [[nodiscard]] bool IsPeerGone() const { return pipe_.IsPeerGone(); }
  // From here on messages are taken in and written. False when the system has no thread for it.
  [[nodiscard]] bool StartWriting();
  // A message could be written in part only: the companion cannot follow the stream any more.
  [[nodiscard]] bool IsBroken() const { return broken_.load(std::memory_order_acquire); }
  // Cancels what is being written, waits for the writing thread, and forgets what still waits.
  void Close();

  // Any thread. Outside a connection every message is lost. One that was made at `madeAt` (performance counter) may be
  // dropped: when the queue is full, when its turn comes too late, or when it is older than the connection. One that is
  // to be kept has its place once in each connection.
  template <typename Record>
  void Send(LinkMessageType type, const Record& record, std::int64_t madeAt = kKept) {
    static_assert(sizeof(Record) <= kLongestPayload);
    Enqueue(type, RecordBytes(record), madeAt);
  }

 private:
  static constexpr std::size_t kLongestPayload = sizeof(FrameSharingInfo);
  struct Message {
    LinkMessageHeader header{};
    std::array<std::byte, kLongestPayload> payload{};
    std::int64_t madeAt = kKept;
  };

  void Enqueue(LinkMessageType type, std::span<const std::byte> payload, std::int64_t madeAt);
  // The writing thread.
  void WriteWaiting();
  [[nodiscard]] bool TakeNext(Message& message);
  [[nodiscard]] bool Write(const Message& message);

  PipeClient pipe_;
  std::atomic<bool> broken_{false};

  Mutex mutex_;  // never held while the pipe is waited for; guards what follows
  std::array<Message, kMostWaiting + 1> waiting_;
  std::size_t first_ = 0;
  std::size_t count_ = 0;
  bool isWriting_ = false;
  std::int64_t writingSince_ = 0;  // performance counter

  Worker writer_;
};

}  // namespace ombrel
