#pragma once

#include <cstdint>
#include <functional>

namespace ombrel {

// A thread that somebody owns: it must have been joined, or never started, when its owner goes away. Start and join it
// from one thread at a time. On Windows a thread keeps the library that holds its code loaded until it ends.
class Thread {
 public:
  Thread() = default;
  ~Thread() { Join(); }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  // False when the system has no thread to give. `body` must not throw.
  [[nodiscard]] bool Start(std::function<void()> body);
  [[nodiscard]] bool IsStarted() const { return native_ != nullptr; }
  // True once the thread has ended (and is forgotten), or was never started.
  bool JoinFor(std::uint32_t timeoutMs);
  void Join();

 private:
  void* native_ = nullptr;
};

}  // namespace ombrel
