#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel::doctor {

// Hints are told and do not count: they may be as they should be.
enum class Severity { kProblem, kWarning, kHint };
enum class Language { kEnglish, kGerman };

// Something that stands in the way of a picture, or may. Its texts are found by the identifier.
struct Finding {
  std::string_view id;
  std::vector<std::string> values = {};  // paths, names and numbers, which the texts refer to as {0}, {1} ...
};

struct Text {
  const char* english;
  const char* german;

  [[nodiscard]] const char* In(Language language) const { return language == Language::kGerman ? german : english; }
};

// One line of what was found, one of what to do.
struct FindingText {
  std::string_view id;
  Severity severity;
  Text what, todo;
};

// All that there may be, in the order in which things go wrong, which is the order of reports.
[[nodiscard]] std::span<const FindingText> FindingTexts();
// Throws std::logic_error for an unknown identifier.
[[nodiscard]] const FindingText& TextOf(std::string_view id);

// The text with the values put in.
[[nodiscard]] std::string Filled(const char* text, const std::vector<std::string>& values);

}  // namespace ombrel::doctor
