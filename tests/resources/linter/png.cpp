#include "png.h"

namespace ombrel::test {
namespace {

constexpr std::string_view kStart{"\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16};
constexpr std::string_view kEnd{"\0\0\0\0IEND\xae\x42\x60\x82", 12};

std::uint32_t BigEndian(const std::string& bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = (value << 8) | static_cast<std::uint8_t>(bytes[offset + i]);
  return value;
}

}  // namespace

std::optional<PictureSize> PngSize(const std::string& bytes) {
  if (!bytes.starts_with(kStart) || !bytes.ends_with(kEnd) || bytes.size() < 33 + kEnd.size()) return std::nullopt;
  return PictureSize{BigEndian(bytes, 16), BigEndian(bytes, 20)};
}

}  // namespace ombrel::test
