#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace ombrel::test {

// A new folder among the system's temporary files, gone with its owner. Paths are UTF-8, relative to it.
class ScratchFolder {
 public:
  // Throws std::runtime_error when none can be made.
  ScratchFolder();

  [[nodiscard]] std::filesystem::path At(const std::string& path) const;
  // As the system writes it.
  [[nodiscard]] std::string TextOf(const std::string& path) const;
  // Makes the folders above it, too; returns the file's TextOf.
  std::string Write(const std::string& file, const std::string& bytes) const;
  [[nodiscard]] std::string Read(const std::string& file) const;
  void Remove(const std::string& file) const { std::filesystem::remove(At(file)); }

 private:
  struct RemoveAll {
    void operator()(const std::filesystem::path* folder) const;
  };
  std::unique_ptr<const std::filesystem::path, RemoveAll> root_;
};

[[nodiscard]] std::filesystem::path FromUtf8(const std::string& text);
[[nodiscard]] std::string ToUtf8(const std::filesystem::path& path);
// Its bytes; none when there is no such file.
[[nodiscard]] std::string ReadAll(const std::filesystem::path& file);
// What the build tells the tests. Throws std::runtime_error when the variable is not set.
[[nodiscard]] std::filesystem::path FromEnvironment(const char* name);

}  // namespace ombrel::test
