#include "support/module_import.h"

#include <windows.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace ombrel::test {
namespace {

template <typename T>
T* At(void* module, std::uint64_t offset) {
  return reinterpret_cast<T*>(static_cast<std::uint8_t*>(module) + offset);
}

void** FindSlot(void* module, std::string_view function) {
  const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
  const auto* nt = At<IMAGE_NT_HEADERS64>(module, static_cast<std::uint64_t>(dos->e_lfanew));
  const auto& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (auto* from = At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); from->Name != 0; ++from) {
    const auto* names = At<IMAGE_THUNK_DATA64>(module, from->OriginalFirstThunk);
    auto* slots = At<void*>(module, from->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++slots) {
      if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
      const auto* byName = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
      if (function == reinterpret_cast<const char*>(byName->Name)) return slots;
    }
  }
  throw std::runtime_error("no import of " + std::string(function));
}

}  // namespace

void* ReplaceImport(void* module, const char* function, void* replacement) {
  void** slot = FindSlot(module, function);
  DWORD protection = 0;
  VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection);
  void* original = std::exchange(*slot, replacement);
  VirtualProtect(slot, sizeof(*slot), protection, &protection);
  return original;
}

ModuleImport::ModuleImport(void* module, const char* function, void* replacement)
    : module_(module), function_(function), original_(ReplaceImport(module, function, replacement)) {}

ModuleImport::~ModuleImport() { ReplaceImport(module_, function_, original_); }

}  // namespace ombrel::test
