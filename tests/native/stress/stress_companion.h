#pragma once

#include <atomic>
#include <cstdint>

#include "counter.h"
#include "support/fake_companion.h"

namespace ombrel::test {

// A companion in a hurry: sends poses, controllers, frame rates and requests as fast as the pipe takes them, reads what
// the driver sends meanwhile, hangs up in the middle of it all and comes back. Drive it from one thread.
class StressCompanion {
 public:
  static constexpr std::uint32_t kControllers = 12;  // ids 0 to 11, one more every now and then

  // Connects, sends that many messages and more until the driver has announced its textures (and, if `wantsHaptics`, has
  // made something vibrate), and hangs up. False when something did not happen in time.
  [[nodiscard]] bool SendThrough(std::uint32_t messages, bool wantsHaptics);

  struct Work {
    std::uint32_t headUpdates = 0;
    std::uint32_t controllerUpdates = 0;
    std::uint32_t others = 0;
    Counter announcements, haptics, wrongMessages;
  };
  [[nodiscard]] const Work& Done() const { return done_; }

 private:
  [[nodiscard]] bool SendNext();
  void ReadUntilTold();

  FakeCompanion companion_;
  Work done_;
  std::uint32_t number_ = 0;
  std::atomic<bool> hangingUp_{false};
};

}  // namespace ombrel::test
