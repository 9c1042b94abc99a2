#include "doctor/finding.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "subjects.h"

namespace ombrel::doctor {

std::span<const FindingText> FindingTexts() {
  static const std::vector<FindingText> all = [] {
    std::vector<FindingText> texts;
    for (const auto& subject : {StartTexts(), FolderTexts(), ComputerTexts()}) {
      texts.insert(texts.end(), subject.begin(), subject.end());
    }
    return texts;
  }();
  return all;
}

const FindingText& TextOf(std::string_view id) {
  const auto texts = FindingTexts();
  const auto found = std::find_if(texts.begin(), texts.end(), [&](const FindingText& text) { return text.id == id; });
  if (found == texts.end()) throw std::logic_error("no text for " + std::string(id));
  return *found;
}

std::string Filled(const char* text, const std::vector<std::string>& values) {
  std::string filled;
  for (const char* at = text; *at != '\0'; ++at) {
    const bool isPlace = at[0] == '{' && at[1] >= '0' && at[1] <= '9' && at[2] == '}';
    if (isPlace) {
      filled += values.at(static_cast<std::size_t>(at[1] - '0'));
      at += 2;
    } else {
      filled += *at;
    }
  }
  return filled;
}

std::string Hexadecimal(std::uint64_t number) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%llX", static_cast<unsigned long long>(number));
  return text;
}

}  // namespace ombrel::doctor
