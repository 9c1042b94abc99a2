#pragma once

#include <cstddef>

#include "platform/owned_handle.h"

namespace ombrel {

// The client end of a named pipe, opened for one direction, with synchronous (blocking) I/O. One thread opens and closes
// it; another may read or write in between, which the first one ends with CancelIo.
class PipeClient {
 public:
  enum class Direction { kRead, kWrite };

  // Opens the pipe's other end if somebody offers it; closes what was open before. Never waits.
  bool Open(const char* name, Direction direction);
  [[nodiscard]] bool IsOpen() const { return static_cast<bool>(handle_); }
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
  void Close() { handle_.Reset(); }

 private:
  OwnedHandle handle_;
};

}  // namespace ombrel
