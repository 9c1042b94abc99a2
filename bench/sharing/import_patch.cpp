#include "sharing/import_patch.h"

#include "sharing/vtable_patch.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

template <class T>
T* At(HMODULE module, DWORD offset) {
  return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* FirstImport(HMODULE module) {
  const auto* dos = At<const IMAGE_DOS_HEADER>(module, 0);
  const auto* headers = At<const IMAGE_NT_HEADERS64>(module, static_cast<DWORD>(dos->e_lfanew));
  const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  return directory.Size == 0 ? nullptr : At<const IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
}

bool IsNamed(HMODULE module, const IMAGE_THUNK_DATA64& name, const char* function) {
  if (IMAGE_SNAP_BY_ORDINAL64(name.u1.Ordinal)) return false;
  const auto* import = At<const IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(name.u1.AddressOfData));
  return std::strcmp(reinterpret_cast<const char*>(import->Name), function) == 0;
}

}  // namespace

bool ReplaceImport(HMODULE module, const char* library, const char* function, void* replacement, void** original) {
  const IMAGE_IMPORT_DESCRIPTOR* import = FirstImport(module);
  if (import == nullptr) return false;
  bool replaced = false;
  for (; import->Name != 0; ++import) {
    if (library != nullptr && _stricmp(At<const char>(module, import->Name), library) != 0) continue;
    const auto* name = At<const IMAGE_THUNK_DATA64>(module, import->OriginalFirstThunk);
    auto* address = At<IMAGE_THUNK_DATA64>(module, import->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++address) {
      if (!IsNamed(module, *name, function)) continue;
      auto* const slot = reinterpret_cast<void**>(&address->u1.Function);
      if (original != nullptr) *original = *slot;
      replaced = WriteProtected(slot, replacement) || replaced;
    }
  }
  return replaced;
}

ImportPatch::ImportPatch(HMODULE module, const char* library, const char* function, void* replacement)
    : module_(module), library_(library), function_(function) {
  if (!ReplaceImport(module, library, function, replacement, &original_)) {
    throw std::runtime_error(std::string("no import of ") + function);
  }
}

ImportPatch::~ImportPatch() { static_cast<void>(ReplaceImport(module_, library_, function_, original_)); }

}  // namespace bench
