#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace ombrel {

// A thread that somebody owns: it must have been joined, or never started, when its owner goes away. Start and join it
// from one thread at a time. On Windows a thread keeps the library that holds its code loaded until it ends.
class Thread {
 public:
  Thread();
  ~Thread();
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  // False when the system has no thread to give. `body` must not throw.
  [[nodiscard]] bool Start(std::function<void()> body);
  // True once the thread has ended (and is forgotten), or was never started.
  bool JoinFor(std::uint32_t timeoutMs);
  void Join();

 private:
  struct Native;
  std::unique_ptr<Native> native_;  // null when there is nothing to join
};

}  // namespace ombrel
