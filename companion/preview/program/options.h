#pragma once

#include <cstdint>
#include <optional>

namespace preview {

struct Options {
  std::uint16_t port = 7420;
  int quality = 75;    // of JPEG, 1 to 100
  bool open = false;   // the page, in the user's browser
  double seconds = 0;  // after which to end; 0: when it is told to
};

// The exit code when the program is to end at once.
[[nodiscard]] std::optional<int> ParseOptions(int argc, char** argv, Options& options);

}  // namespace preview
