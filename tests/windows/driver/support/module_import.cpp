#include "support/module_import.h"

#include <stdexcept>
#include <string>

namespace ombrel::test {

void* ReplaceImport(void* module, const char* function, void* replacement) {
  void* original = nullptr;
  if (!bench::ReplaceImport(static_cast<HMODULE>(module), nullptr, function, replacement, &original)) {
    throw std::runtime_error("no import of " + std::string(function));
  }
  return original;
}

}  // namespace ombrel::test
