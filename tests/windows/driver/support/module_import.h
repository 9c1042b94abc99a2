#pragma once

#include "sharing/import_patch.h"

namespace ombrel::test {

// Puts a function of the test in the place of one that a loaded module imports, from whichever library, and returns what
// stood there. Throws std::runtime_error when the module has no such import.
void* ReplaceImport(void* module, const char* function, void* replacement);

// The same for as long as the owner lives. The module must stay loaded that long.
class ModuleImport : public bench::ImportPatch {
 public:
  ModuleImport(void* module, const char* function, void* replacement)
      : ImportPatch(static_cast<HMODULE>(module), nullptr, function, replacement) {}
};

}  // namespace ombrel::test
