#pragma once

#include <algorithm>
#include <string_view>

namespace ombrel {

// Interface names in GetComponent are compared without regard to (ASCII) case. A null name is nobody's.
[[nodiscard]] constexpr bool IsComponentNamed(const char* asked, std::string_view name) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return asked != nullptr && std::ranges::equal(std::string_view(asked), name, {}, lower, lower);
}

}  // namespace ombrel
