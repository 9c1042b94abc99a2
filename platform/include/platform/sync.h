#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

namespace ombrel {

// Mutex, condition variable and eventcount over the operating system's own primitives. The standard library's would do,
// but MinGW's (winpthreads) keep thread-local state of threads that they did not start, which outlives the DLL when it
// is unloaded.

// Satisfies BasicLockable: use it with std::lock_guard and std::unique_lock.
class Mutex {
 public:
  Mutex();
  ~Mutex();
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock();
  void unlock();
  bool try_lock();

 private:
  friend class Condition;
  void* native_ = nullptr;  // the primitive itself on Windows, a pointer to it elsewhere
};

class Condition {
 public:
  Condition();
  ~Condition();
  Condition(const Condition&) = delete;
  Condition& operator=(const Condition&) = delete;

  void NotifyAll();
  // The lock must be held. May wake without a reason.
  void Wait(std::unique_lock<Mutex>& lock);
  // False when the time was up.
  bool WaitFor(std::unique_lock<Mutex>& lock, std::uint32_t timeoutMs);

  template <typename Predicate>
  void Wait(std::unique_lock<Mutex>& lock, Predicate ready) {
    while (!ready()) Wait(lock);
  }

 private:
  void* native_ = nullptr;
};

// An eventcount: lets threads wait for the next call of WakeAll, or for a time, without a lock. A waiter notes the
// Generation first and then looks at what it waits for; a WakeAll in between makes the wait return at once, so that no
// wake-up is lost.
class WakeSignal {
 public:
  [[nodiscard]] std::uint32_t Generation() const { return generation_.load(std::memory_order_acquire); }
  void WakeAll();
  // True when WakeAll was called since `seen` was noted, false when the time was up.
  bool WaitFor(std::uint32_t seen, std::uint32_t timeoutMs) const;

 private:
  std::atomic<std::uint32_t> generation_{0};
};

}  // namespace ombrel
