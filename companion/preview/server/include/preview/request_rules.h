#pragma once

#include <string_view>

// Who may ask this server. A page of another site can reach it through the visitor's own browser: directly, which shows in
// Origin, or after its name was made to resolve to this machine (DNS rebinding), which shows in Host.
namespace preview {

// "localhost", "127.0.0.1" or "[::1]", with a port or without one. The port may differ from the server's own: a phone
// sees the one that was forwarded.
[[nodiscard]] bool IsLocalHost(std::string_view host);

// Whether a page of `origin` and the server named `host` are one origin.
[[nodiscard]] bool IsSameOrigin(std::string_view origin, std::string_view host);

}  // namespace preview
