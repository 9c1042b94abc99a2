#include "doctor/paths.h"

#include <algorithm>

namespace ombrel::doctor {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string Native(std::string_view path) {
  std::string native(path);
  std::replace(native.begin(), native.end(), '/', '\\');
  while (native.size() > 1 && native.back() == '\\' && native[native.size() - 2] != ':') native.pop_back();
  return native;
}

std::string Join(std::string_view folder, std::string_view name) {
  std::string joined = Native(folder);
  if (!joined.empty() && joined.back() != '\\') joined += '\\';
  return joined.append(Native(name));
}

std::string Parent(std::string_view path) {
  const std::string native = Native(path);
  const std::size_t separator = native.rfind('\\');
  return separator == std::string::npos ? std::string() : native.substr(0, separator);
}

std::string Leaf(std::string_view path) {
  const std::string native = Native(path);
  return native.substr(native.rfind('\\') + 1);
}

bool SamePath(std::string_view a, std::string_view b) { return EqualIgnoringCase(Native(a), Native(b)); }

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  return lower;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) { return LowerAscii(a) == LowerAscii(b); }

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.emplace_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

bool Contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

}  // namespace ombrel::doctor
