#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

#include "link/wire.h"
#include "platform/pipe.h"
#include "platform/sync.h"

namespace ombrel {

// The pipe to the companion: whole messages, one at a time, from any thread. A companion that does not read can block a
// writer for kStallMs and the connect thread's next round (600 ms in all), and one that waits behind another writer for
// twice that. Then nobody waits for it for kPauseMs: a runtime that has many messages to send is not held once for each.
class OutgoingPipe {
 public:
  enum class Result {
    kSent,     // or lost in a pipe that has broken
    kStalled,  // the companion did not take the first byte, or lately did not: nothing was sent, the stream is in step
    kBroken,   // the companion stopped in the middle of a message: the connection cannot be used any more
  };

  static constexpr std::uint32_t kStallMs = 500;
  static constexpr std::uint32_t kPauseMs = 2000;

  // Connect thread only.
  bool Open() { return pipe_.Open(kPipeToCompanion, PipeClient::Direction::kWrite); }
  [[nodiscard]] bool IsOpen() const { return pipe_.IsOpen(); }
  [[nodiscard]] bool IsPeerGone() const { return pipe_.IsPeerGone(); }
  void CancelStalledWrite();
  // From here on messages go out; until then, and after Close or half a message, they are lost.
  void Admit();
  [[nodiscard]] bool IsBroken() const { return broken_.load(std::memory_order_acquire); }
  // Frees a writer that is blocked and waits for it.
  void Close();

  [[nodiscard]] Result Write(LinkMessageType type, std::span<const std::byte> payload);

 private:
  [[nodiscard]] bool IsPausing() const;
  [[nodiscard]] Result WriteParts(LinkMessageType type, std::span<const std::byte> payload);

  Mutex mutex_;  // one message at a time; also held to close
  PipeClient pipe_;
  bool admitted_ = false;       // guarded by mutex_
  std::int64_t stalledAt_ = 0;  // performance counter, 0 unless the last write stalled; guarded by mutex_
  std::atomic<std::int64_t> writingSince_{0};  // performance counter, 0 while nobody writes
  std::atomic<bool> broken_{false};            // half a message is out
  std::atomic<bool> cancelled_{false};         // the write under way was cancelled because it stalled
};

}  // namespace ombrel
