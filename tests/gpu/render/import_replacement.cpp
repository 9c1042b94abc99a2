#include "import_replacement.h"

#include <windows.h>

#include <stdexcept>

namespace ombrel::test {
namespace {

void Write(void** import, void* function) {
  DWORD before = 0;
  if (!VirtualProtect(import, sizeof(*import), PAGE_READWRITE, &before))
    throw std::runtime_error("import is read-only");
  *import = function;
  VirtualProtect(import, sizeof(*import), before, &before);
}

}  // namespace

ImportReplacement::ImportReplacement(void** import, void* replacement) : import_(import), original_(*import) {
  Write(import_, replacement);
}

ImportReplacement::~ImportReplacement() { Write(import_, original_); }

}  // namespace ombrel::test
