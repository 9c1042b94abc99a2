#include <windows.h>

#include "platform/named_objects.h"

namespace ombrel {
namespace {

// A mapping that somebody else made first may have no memory behind its addresses, and who writes there is ended.
bool HasMemory(const void* view, std::size_t size) {
  MEMORY_BASIC_INFORMATION region{};
  const bool isKnown = VirtualQuery(view, &region, sizeof(region)) == sizeof(region);
  return isKnown && region.State == MEM_COMMIT && region.RegionSize >= size;
}

}  // namespace

bool NamedMemory::Create(const std::string& name, std::size_t size) {
  Close();
  mapping_ =
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(size), name.c_str());
  if (mapping_ == nullptr) return false;
  view_ = MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, size);
  if (view_ != nullptr && !HasMemory(view_, size)) Close();
  return view_ != nullptr;
}

void NamedMemory::Close() {
  if (view_ != nullptr) UnmapViewOfFile(view_);
  if (mapping_ != nullptr) CloseHandle(mapping_);
  view_ = nullptr;
  mapping_ = nullptr;
}

bool NamedMutex::Create(const std::string& name) {
  Close();
  handle_ = CreateMutexA(nullptr, FALSE, name.c_str());
  return handle_ != nullptr;
}

void NamedMutex::Close() {
  if (handle_ != nullptr) CloseHandle(handle_);
  handle_ = nullptr;
}

}  // namespace ombrel
