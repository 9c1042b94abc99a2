#include "preview/request_rules.h"

#include <algorithm>

namespace preview {
namespace {

bool IsPort(std::string_view text) {
  return !text.empty() && text.size() <= 5 &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

bool IsLocalHost(std::string_view host) {
  for (const std::string_view name : {"localhost", "127.0.0.1", "[::1]"}) {
    if (!host.starts_with(name)) continue;
    const std::string_view rest = host.substr(name.size());
    if (rest.empty() || (rest.front() == ':' && IsPort(rest.substr(1)))) return true;
  }
  return false;
}

bool IsSameOrigin(std::string_view origin, std::string_view host) {
  constexpr std::string_view kScheme = "http://";
  return origin.starts_with(kScheme) && origin.substr(kScheme.size()) == host;
}

}  // namespace preview
