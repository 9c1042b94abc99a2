#pragma once

#include <string>
#include <string_view>

namespace ombrel::doctor {

[[nodiscard]] std::wstring Wide(std::string_view utf8);
[[nodiscard]] std::string Utf8(std::wstring_view wide);

// To a console as text, which needs no code page; to anything else as UTF-8.
void Print(const std::string& text);

// Whether the console's window closes when this program ends.
[[nodiscard]] bool OwnsItsWindow();
// Returns at once when nobody is there to press one.
void WaitForKey();

}  // namespace ombrel::doctor
