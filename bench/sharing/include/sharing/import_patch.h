#pragma once

#include <windows.h>

namespace bench {

// Redirects a module's import of `function` from `library` (case ignored; null: whichever has it) to `replacement`, for
// calls that go through the ordinary import table. `original` receives what stood there. False when the module has no
// such import.
[[nodiscard]] bool ReplaceImport(HMODULE module, const char* library, const char* function, void* replacement,
                                 void** original = nullptr);

// The same until its owner goes. The module must stay loaded that long.
class ImportPatch {
 public:
  // Throws std::runtime_error when the module has no such import.
  ImportPatch(HMODULE module, const char* library, const char* function, void* replacement);
  ~ImportPatch();
  ImportPatch(const ImportPatch&) = delete;
  ImportPatch& operator=(const ImportPatch&) = delete;

  [[nodiscard]] void* Original() const { return original_; }

 private:
  HMODULE module_;
  const char* library_;
  const char* function_;
  void* original_ = nullptr;
};

}  // namespace bench
