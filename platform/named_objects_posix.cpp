#include <cstdlib>

#include "platform/named_objects.h"

namespace ombrel {

// Natively the block is private memory: nobody else is there to share it with.
bool NamedMemory::Create(const std::string& /*name*/, std::size_t size) {
  view_.reset(static_cast<std::byte*>(std::calloc(1, size)));
  return view_ != nullptr;
}

void NamedMemory::Unmap::operator()(std::byte* view) const { std::free(view); }

OwnedHandle CreateNamedMutex(const std::string& /*name*/) { return {}; }

}  // namespace ombrel
