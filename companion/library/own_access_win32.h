#pragma once

#include <windows.h>

#include <memory>

namespace companion {

// Security attributes whose access list lets the user of this process in, and nobody else.
class OwnAccess {
 public:
  OwnAccess();

  // Null when the list could not be made: make no object without it.
  SECURITY_ATTRIBUTES* Get() { return descriptor_ ? &attributes_ : nullptr; }

 private:
  struct LocalFreer {
    void operator()(void* memory) const { LocalFree(memory); }
  };

  std::unique_ptr<void, LocalFreer> descriptor_;
  SECURITY_ATTRIBUTES attributes_{};
};

}  // namespace companion
