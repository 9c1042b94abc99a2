#include <windows.h>

#include "platform/sync.h"

namespace ombrel {
namespace {

static_assert(sizeof(SRWLOCK) == sizeof(void*) && sizeof(CONDITION_VARIABLE) == sizeof(void*));

SRWLOCK* AsLock(void*& native) { return reinterpret_cast<SRWLOCK*>(&native); }
CONDITION_VARIABLE* AsCondition(void*& native) { return reinterpret_cast<CONDITION_VARIABLE*>(&native); }

}  // namespace

Mutex::Mutex() { InitializeSRWLock(AsLock(native_)); }
Mutex::~Mutex() = default;
void Mutex::lock() { AcquireSRWLockExclusive(AsLock(native_)); }
void Mutex::unlock() { ReleaseSRWLockExclusive(AsLock(native_)); }
bool Mutex::try_lock() { return TryAcquireSRWLockExclusive(AsLock(native_)) != 0; }

Condition::Condition() { InitializeConditionVariable(AsCondition(native_)); }
Condition::~Condition() = default;
void Condition::NotifyAll() { WakeAllConditionVariable(AsCondition(native_)); }

void Condition::Wait(std::unique_lock<Mutex>& lock) {
  SleepConditionVariableSRW(AsCondition(native_), AsLock(lock.mutex()->native_), INFINITE, 0);
}

bool Condition::WaitFor(std::unique_lock<Mutex>& lock, std::uint32_t timeoutMs) {
  return SleepConditionVariableSRW(AsCondition(native_), AsLock(lock.mutex()->native_), timeoutMs, 0) != 0;
}

void WakeSignal::WakeAll() {
  generation_.fetch_add(1, std::memory_order_acq_rel);
  WakeByAddressAll(&generation_);
}

bool WakeSignal::WaitFor(std::uint32_t seen, std::uint32_t timeoutMs) const {
  static_assert(sizeof(generation_) == sizeof(std::uint32_t) && std::atomic<std::uint32_t>::is_always_lock_free);
  const std::uint64_t end = GetTickCount64() + timeoutMs;
  std::uint32_t left = timeoutMs;
  while (Generation() == seen) {
    auto* address = const_cast<std::atomic<std::uint32_t>*>(&generation_);
    if (WaitOnAddress(address, &seen, sizeof(seen), left) == 0) return Generation() != seen;
    // Woken without a change: wait for what is left of the time.
    const std::uint64_t now = GetTickCount64();
    if (now >= end) return Generation() != seen;
    left = static_cast<std::uint32_t>(end - now);
  }
  return true;
}

}  // namespace ombrel
