#pragma once

namespace ombrel::test {

// Puts another function in place of one that this program imports from a system library, for as long as it lives.
class ImportReplacement {
 public:
  // `import` is the address of the import's table entry.
  ImportReplacement(void** import, void* replacement);
  ~ImportReplacement();
  ImportReplacement(const ImportReplacement&) = delete;
  ImportReplacement& operator=(const ImportReplacement&) = delete;

  [[nodiscard]] void* Original() const { return original_; }

 private:
  void** const import_;
  void* const original_;
};

}  // namespace ombrel::test
