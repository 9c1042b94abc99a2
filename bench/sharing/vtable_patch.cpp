#include "sharing/vtable_patch.h"

#include <windows.h>

#include <atomic>
#include <mutex>

namespace bench {

namespace {

bool PatchMethod(void** slot, const MethodPatch& patch) {
  if (*slot == patch.replacement) return true;
  void* const known = patch.original->load();
  if (known != nullptr && known != *slot) return false;
  patch.original->store(*slot);
  return WriteProtected(slot, patch.replacement);
}

}  // namespace

bool PatchMethods(void* object, std::span<const MethodPatch> patches) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  void** const table = *static_cast<void***>(object);
  bool complete = true;
  for (const MethodPatch& patch : patches) complete = PatchMethod(table + patch.slot, patch) && complete;
  return complete;
}

bool WriteProtected(void** place, void* value) {
  DWORD protection = 0;
  if (VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &protection) == 0) return false;
  std::atomic_ref<void*>(*place).store(value);
  VirtualProtect(place, sizeof(*place), protection, &protection);
  return true;
}

}  // namespace bench
