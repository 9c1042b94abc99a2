#pragma once

#include <string>
#include <string_view>
#include <vector>

// Windows paths as UTF-8 text, so that a computer's files can be judged on any other, and what is asked of texts.
namespace ombrel::doctor {

[[nodiscard]] std::string Join(std::string_view folder, std::string_view name);
// All before the last separator, and all behind it. A trailing separator does not count.
[[nodiscard]] std::string Parent(std::string_view path);
[[nodiscard]] std::string Leaf(std::string_view path);
// As Windows writes it: backslashes, none at the end.
[[nodiscard]] std::string Native(std::string_view path);
// Whether both name the same place as far as the text tells: letters beyond ASCII are compared with their case.
[[nodiscard]] bool SamePath(std::string_view a, std::string_view b);

[[nodiscard]] bool IsAscii(std::string_view text);
[[nodiscard]] std::string LowerAscii(std::string_view text);
[[nodiscard]] bool EqualIgnoringCase(std::string_view a, std::string_view b);
// Without what ends them. No line follows the last end of a line.
[[nodiscard]] std::vector<std::string> Lines(std::string_view text);
[[nodiscard]] bool Contains(std::string_view text, std::string_view part);

}  // namespace ombrel::doctor
