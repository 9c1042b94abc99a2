#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel::test {

struct PictureSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool operator==(const PictureSize&) const = default;
};

// By the file's header; nothing unless the file is a PNG that is there to its end.
[[nodiscard]] std::optional<PictureSize> PngSize(const std::string& bytes);

}  // namespace ombrel::test
