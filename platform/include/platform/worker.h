#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "platform/sync.h"
#include "platform/thread.h"

namespace ombrel {

// A thread that does the same piece of work whenever it is told to. Notify does not wait; several calls while it is busy
// cause one more run. Start and stop it from one thread at a time.
class Worker {
 public:
  // False when the system has no thread to give. `work` must not throw.
  [[nodiscard]] bool Start(std::function<void()> work);
  // Any thread. Nothing happens before Start and after StopFor.
  void Notify();
  // Work that has begun is not interrupted, and no more begins. True once the thread has ended, or was never started.
  [[nodiscard]] bool StopFor(std::uint32_t timeoutMs);

 private:
  void Run() const;

  std::function<void()> work_;
  std::atomic<bool> stopping_{false};
  WakeSignal wake_;
  Thread thread_;
};

}  // namespace ombrel
