#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ombrel {

// The client end of a named pipe, opened for one direction, blocking. For one thread at a time, but for CancelIo, which
// any thread may call meanwhile.
class PipeClient {
 public:
  enum class Direction { kRead, kWrite };

  PipeClient() = default;
  ~PipeClient() { Close(); }
  PipeClient(const PipeClient&) = delete;
  PipeClient& operator=(const PipeClient&) = delete;

  // Opens the pipe's other end if somebody offers it; closes what was open before. Never waits.
  bool Open(const char* name, Direction direction);
  [[nodiscard]] bool IsOpen() const { return native_.load(std::memory_order_acquire) != kClosed; }
  // True when the far end has gone: such a pipe never comes back to life and is best closed.
  [[nodiscard]] bool IsPeerGone() const;

  // Waits until something comes and takes at most `capacity` bytes of it. False when the pipe has ended or the call was
  // cancelled. True with no bytes at all when the far end wrote none, which is not the end.
  [[nodiscard]] bool ReadSome(void* buffer, std::size_t capacity, std::size_t& got);
  // Waits until the far end has taken every byte (or the pipe's buffer has room for them). False when the pipe has
  // ended or the call was cancelled; how much was written is then unknown.
  [[nodiscard]] bool WriteAll(const void* bytes, std::size_t size);

  // Ends a read or write that another thread is blocked in. Does nothing to one that has not begun yet.
  void CancelIo();
  void Close();

 private:
  static constexpr std::intptr_t kClosed = -1;
  std::atomic<std::intptr_t> native_{kClosed};
};

}  // namespace ombrel
