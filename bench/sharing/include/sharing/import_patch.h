#pragma once

#include <windows.h>

namespace bench {

// Redirects a module's import of `function` from `library` (case ignored) to `replacement`, for calls that go
// through the ordinary import table. False when the module has no such import.
[[nodiscard]] bool ReplaceImport(HMODULE module, const char* library, const char* function, void* replacement);

}  // namespace bench
