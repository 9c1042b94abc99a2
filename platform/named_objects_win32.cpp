#include <windows.h>

#include "platform/named_objects.h"

namespace ombrel {
namespace {

// False for a SEC_RESERVE mapping that another process made under the name first: touching it would fault.
bool IsCommitted(const void* view, std::size_t size) {
  MEMORY_BASIC_INFORMATION region{};
  const bool isKnown = VirtualQuery(view, &region, sizeof(region)) == sizeof(region);
  return isKnown && region.State == MEM_COMMIT && region.RegionSize >= size;
}

}  // namespace

bool NamedMemory::Create(const std::string& name, std::size_t size) {
  view_.reset();
  mapping_ = OwnedHandle(
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(size), name.c_str()));
  if (!mapping_) return false;
  view_.reset(static_cast<std::byte*>(MapViewOfFile(mapping_.Get(), FILE_MAP_ALL_ACCESS, 0, 0, size)));
  if (view_ && !IsCommitted(view_.get(), size)) {
    view_.reset();
    mapping_.Reset();
  }
  return view_ != nullptr;
}

void NamedMemory::Unmap::operator()(std::byte* view) const { UnmapViewOfFile(view); }

OwnedHandle CreateNamedMutex(const std::string& name) {
  return OwnedHandle(CreateMutexA(nullptr, FALSE, name.c_str()));
}

}  // namespace ombrel
