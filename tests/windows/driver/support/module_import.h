#pragma once

namespace ombrel::test {

// Puts a function of the test in the place of one that a loaded module imports through its import table, and returns
// what stood there. Throws std::runtime_error when the module has no such import.
void* ReplaceImport(void* module, const char* function, void* replacement);

// The same for as long as the owner lives. The module must stay loaded that long.
class ModuleImport {
 public:
  ModuleImport(void* module, const char* function, void* replacement);
  ~ModuleImport();
  ModuleImport(const ModuleImport&) = delete;
  ModuleImport& operator=(const ModuleImport&) = delete;

 private:
  void* module_;
  const char* function_;
  void* original_;
};

}  // namespace ombrel::test
