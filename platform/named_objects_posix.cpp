#include <cstdlib>

#include "platform/named_objects.h"

namespace ombrel {

// Natively the block is private memory: nobody else is there to share it with.
bool NamedMemory::Create(const std::string& /*name*/, std::size_t size) {
  Close();
  view_ = std::calloc(1, size);
  return view_ != nullptr;
}

void NamedMemory::Close() {
  std::free(view_);
  view_ = nullptr;
}

bool NamedMutex::Create(const std::string& /*name*/) { return true; }
void NamedMutex::Close() {}

}  // namespace ombrel
