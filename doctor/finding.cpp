#include "doctor/finding.h"

#include <algorithm>
#include <stdexcept>

namespace ombrel::doctor {

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

}  // namespace ombrel::doctor
