#include <chrono>
#include <condition_variable>

#include "platform/sync.h"

namespace ombrel {
namespace {

std::mutex& AsLock(void* native) { return *static_cast<std::mutex*>(native); }
std::condition_variable_any& AsCondition(void* native) { return *static_cast<std::condition_variable_any*>(native); }

// One gate serves every signal: this body exists for tests, where a spurious wake-up costs nothing.
std::mutex& SignalMutex() {
  static std::mutex mutex;
  return mutex;
}
std::condition_variable& SignalCondition() {
  static std::condition_variable condition;
  return condition;
}

}  // namespace

Mutex::Mutex() : native_(new std::mutex) {}
Mutex::~Mutex() { delete static_cast<std::mutex*>(native_); }
void Mutex::lock() { AsLock(native_).lock(); }
void Mutex::unlock() { AsLock(native_).unlock(); }
bool Mutex::try_lock() { return AsLock(native_).try_lock(); }

Condition::Condition() : native_(new std::condition_variable_any) {}
Condition::~Condition() { delete static_cast<std::condition_variable_any*>(native_); }
void Condition::NotifyAll() { AsCondition(native_).notify_all(); }
void Condition::Wait(std::unique_lock<Mutex>& lock) { AsCondition(native_).wait(lock); }
bool Condition::WaitFor(std::unique_lock<Mutex>& lock, std::uint32_t timeoutMs) {
  return AsCondition(native_).wait_for(lock, std::chrono::milliseconds(timeoutMs)) == std::cv_status::no_timeout;
}

void WakeSignal::WakeAll() {
  {
    const std::lock_guard guard(SignalMutex());
    generation_.fetch_add(1, std::memory_order_acq_rel);
  }
  SignalCondition().notify_all();
}

bool WakeSignal::WaitFor(std::uint32_t seen, std::uint32_t timeoutMs) const {
  std::unique_lock lock(SignalMutex());
  return SignalCondition().wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return Generation() != seen; });
}

}  // namespace ombrel
