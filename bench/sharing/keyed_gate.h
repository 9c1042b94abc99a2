#pragma once

#include "named_mutex.h"
#include "process_identity.h"
#include "surface_header.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace bench {

// One texture object's side of a keyed mutex whose state lies in shared memory. Ownership belongs to this object,
// not to a thread: acquire and release may come on different threads. Any thread; waiting blocks only its caller.
class KeyedGate {
 public:
  // `record` must outlive the gate; `name` is the surface's, the same in all processes.
  KeyedGate(HoldRecord& record, std::string name);

  // S_OK: held now. WAIT_TIMEOUT: it was not released with `key` in time. WAIT_ABANDONED: a holder went away
  // without releasing; nothing is held, and it stays so for good. DXGI_ERROR_INVALID_CALL: this object holds it.
  // A time-out of 0 tries once, INFINITE waits on.
  [[nodiscard]] HRESULT Acquire(std::uint64_t key, DWORD timeoutMs);
  // E_FAIL when this object does not hold it.
  [[nodiscard]] HRESULT Release(std::uint64_t key);
  [[nodiscard]] bool IsHeldHere();
  // The holder goes away: who waits or comes later finds the mutex abandoned. Nothing happens if it is not held.
  void Abandon();

 private:
  struct Attempt;

  Attempt Try(std::uint64_t key);
  bool OwnsRecord() const;
  void Take(std::uint64_t key);
  std::string EventName(std::uint64_t key) const;
  void Wake(std::uint64_t key) const;

  HoldRecord& record_;
  std::string name_;
  NamedMutex guard_;
  ProcessIdentity process_;
  std::uint64_t instance_;
};

}  // namespace bench
