#include "keyed_gate.h"

#include <dxgi.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <utility>

namespace bench {

namespace {

using namespace std::chrono_literals;

// A waiter looks again at least this often. It is woken for a release and by the end of the process that held
// the mutex when it began to wait; only a holder that came later and died is found by looking.
constexpr auto kLookAgain = 250ms;

std::uint64_t NextInstance() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

class Deadline {
 public:
  explicit Deadline(DWORD timeoutMs) {
    if (timeoutMs != INFINITE) end_ = Clock::now() + std::chrono::milliseconds(timeoutMs);
  }

  // Rounded up, so that 0 means that the time is over.
  std::chrono::milliseconds Left() const {
    if (!end_) return kLookAgain;
    return std::max(std::chrono::ceil<std::chrono::milliseconds>(*end_ - Clock::now()), 0ms);
  }

 private:
  using Clock = std::chrono::steady_clock;
  std::optional<Clock::time_point> end_;
};

}  // namespace

// What one look at the record gave: a result, or what to wait for before the next look.
struct KeyedGate::Attempt {
  std::optional<HRESULT> result;
  OwnedHandle released;
  OwnedHandle ownerProcess;

  void Wait(std::chrono::milliseconds limit) const {
    const std::array handles{released.Get(), ownerProcess.Get()};
    const auto timeoutMs = static_cast<DWORD>(std::min<std::chrono::milliseconds>(limit, kLookAgain).count());
    WaitForMultipleObjects(ownerProcess ? 2 : 1, handles.data(), FALSE, timeoutMs);
  }
};

KeyedGate::KeyedGate(HoldRecord& record, std::string name)
    : record_(record),
      name_(std::move(name)),
      guard_(name_ + ".guard"),
      process_(CurrentProcessIdentity()),
      instance_(NextInstance()) {}

HRESULT KeyedGate::Acquire(std::uint64_t key, DWORD timeoutMs) {
  const Deadline deadline(timeoutMs);
  while (true) {
    const auto left = deadline.Left();
    const Attempt attempt = Try(key);
    if (attempt.result) return *attempt.result;
    if (left == 0ms) return static_cast<HRESULT>(WAIT_TIMEOUT);
    attempt.Wait(left);
  }
}

KeyedGate::Attempt KeyedGate::Try(std::uint64_t key) {
  const std::lock_guard lock(guard_);
  if (record_.state == HoldState::kReleased && record_.key == key) {
    Take(key);
    return {.result = S_OK, .released = {}, .ownerProcess = {}};
  }
  if (OwnsRecord()) return {.result = DXGI_ERROR_INVALID_CALL, .released = {}, .ownerProcess = {}};

  Attempt attempt;
  if (record_.state == HoldState::kHeld) {
    ProcessWatch owner({record_.ownerProcess, record_.ownerStartTime});
    if (!owner.alive) record_.state = HoldState::kAbandoned;
    attempt.ownerProcess = std::move(owner.process);
  }
  if (record_.state == HoldState::kAbandoned) {
    attempt.result = static_cast<HRESULT>(WAIT_ABANDONED);
    return attempt;
  }
  // Reset under the guard, where nothing is to be had: a release after this sets it again.
  attempt.released = OwnedHandle(CreateEventA(nullptr, TRUE, FALSE, EventName(key).c_str()));
  ResetEvent(attempt.released.Get());
  return attempt;
}

HRESULT KeyedGate::Release(std::uint64_t key) {
  const std::lock_guard lock(guard_);
  if (!OwnsRecord()) return E_FAIL;
  record_.key = key;
  record_.state = HoldState::kReleased;
  Wake(key);
  return S_OK;
}

bool KeyedGate::IsHeldHere() {
  const std::lock_guard lock(guard_);
  return OwnsRecord();
}

void KeyedGate::Abandon() {
  const std::lock_guard lock(guard_);
  if (!OwnsRecord()) return;
  record_.state = HoldState::kAbandoned;
  Wake(record_.key);
}

bool KeyedGate::OwnsRecord() const {
  return record_.state == HoldState::kHeld && record_.ownerProcess == process_.id &&
         record_.ownerStartTime == process_.startTime && record_.ownerInstance == instance_;
}

// The state comes last: a process that dies in between leaves the mutex released.
void KeyedGate::Take(std::uint64_t key) {
  record_.ownerProcess = process_.id;
  record_.ownerStartTime = process_.startTime;
  record_.ownerInstance = instance_;
  record_.key = key;
  record_.state = HoldState::kHeld;
}

std::string KeyedGate::EventName(std::uint64_t key) const { return name_ + ".key" + std::to_string(key); }

// An event exists only while somebody waits for that key.
void KeyedGate::Wake(std::uint64_t key) const {
  const OwnedHandle event(OpenEventA(EVENT_MODIFY_STATE, FALSE, EventName(key).c_str()));
  if (event) SetEvent(event.Get());
}

}  // namespace bench
