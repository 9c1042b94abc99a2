#pragma once

#include "base/owned_handle.h"

#include <string>

namespace bench {

// A mutex shared between processes by its name. Meets the standard library's lockable requirements.
// A holder that died leaves it unlocked: what it guards has to stay usable after each single write.
class NamedMutex {
 public:
  explicit NamedMutex(const std::string& name) : mutex_(CreateMutexA(nullptr, FALSE, name.c_str())) {}

  void lock() { WaitForSingleObject(mutex_.Get(), INFINITE); }
  void unlock() { ReleaseMutex(mutex_.Get()); }

 private:
  OwnedHandle mutex_;
};

}  // namespace bench
