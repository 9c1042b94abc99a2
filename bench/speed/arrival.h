#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <stdexcept>

#include "base/owned_handle.h"
#include "clocks.h"

namespace bench::speed {

// When what was waited for came: one thread expects and waits, another notes.
class Arrival {
 public:
  void Expect() { ResetEvent(event_.Get()); }

  void Note() {
    nanoseconds_.store(WallNanoseconds(), std::memory_order_release);
    SetEvent(event_.Get());
  }

  // The time of the last Note; throws when none comes.
  [[nodiscard]] std::int64_t Wait() {
    constexpr DWORD kPatienceMs = 60'000;
    if (WaitForSingleObject(event_.Get(), kPatienceMs) != WAIT_OBJECT_0) throw std::runtime_error("nothing came");
    return nanoseconds_.load(std::memory_order_acquire);
  }

 private:
  OwnedHandle event_{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
  std::atomic<std::int64_t> nanoseconds_ = 0;
};

}  // namespace bench::speed
