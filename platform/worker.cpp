#include "platform/worker.h"

#include <limits>
#include <utility>

namespace ombrel {

bool Worker::Start(std::function<void()> work) {
  work_ = std::move(work);
  stopping_.store(false, std::memory_order_release);
  return thread_.Start([this] { Run(); });
}

void Worker::Notify() { wake_.WakeAll(); }

bool Worker::StopFor(std::uint32_t timeoutMs) {
  stopping_.store(true, std::memory_order_release);
  wake_.WakeAll();
  return thread_.JoinFor(timeoutMs);
}

void Worker::Run() const {
  constexpr std::uint32_t kForeverMs = std::numeric_limits<std::uint32_t>::max();
  // Noted before the work: a Notify that comes meanwhile ends the wait at once.
  for (std::uint32_t seen = wake_.Generation(); !stopping_.load(std::memory_order_acquire); seen = wake_.Generation()) {
    work_();
    wake_.WaitFor(seen, kForeverMs);
  }
}

}  // namespace ombrel
