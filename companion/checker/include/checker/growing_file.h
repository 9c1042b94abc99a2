#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

namespace checker {

// A file that somebody else writes, and may not have begun. One thread.
class GrowingFile {
 public:
  explicit GrowingFile(std::filesystem::path path) : path_(std::move(path)) {}

  // What has come since the last time.
  [[nodiscard]] std::vector<std::uint8_t> More();
  // Whether there was such a file.
  [[nodiscard]] bool IsThere() const { return stream_.is_open(); }

 private:
  std::filesystem::path path_;
  std::ifstream stream_;
  std::streamoff read_ = 0;
};

}  // namespace checker
