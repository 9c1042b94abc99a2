#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace bench {

// Both throw std::runtime_error when it cannot be done. That names the file without its folder, since it may go into a
// report.

// A file's bytes, as they are.
[[nodiscard]] std::string ReadText(const std::filesystem::path& file);

// Instead of what was in the file.
void WriteText(const std::filesystem::path& file, std::string_view text);

}  // namespace bench
