#pragma once

#include <atomic>
#include <cstdint>

namespace ombrel {

// Rundown protection: lets the runtime's threads in while it is open, without a lock, and lets the one who closes it
// wait until the last of them is out: what they use may go away then. Any thread may enter; opening and closing is for
// one thread at a time.
class SubmissionGate {
 public:
  // Held while inside. Empty when the gate was closed.
  class Pass {
   public:
    explicit Pass(SubmissionGate& gate) : gate_(gate.Enter() ? &gate : nullptr) {}
    ~Pass() {
      if (gate_ != nullptr) gate_->Leave();
    }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    explicit operator bool() const { return gate_ != nullptr; }

   private:
    SubmissionGate* gate_;
  };

  [[nodiscard]] bool IsOpen() const { return open_.load(); }
  void Open() { open_.store(true); }
  void Close() { open_.store(false); }
  // After Close: waits until nobody is inside.
  void Drain();

 private:
  bool Enter();
  void Leave() { inside_.fetch_sub(1); }

  // Entering and closing each write the one and then read the other: that only works in a single total order.
  std::atomic<bool> open_{false};
  std::atomic<std::int32_t> inside_{0};
};

}  // namespace ombrel
