#include "options.h"

#include <CLI/CLI.hpp>

namespace preview {

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
  CLI::App app("Shows the driver's frames on a page of this machine; a browser there is headset and controllers");
  app.add_option("--port", options.port, "Port of http://localhost:PORT/; 0: one that is free")->capture_default_str();
  app.add_option("--quality", options.quality, "Of the pictures")->check(CLI::Range(1, 100))->capture_default_str();
  app.add_flag("--open", options.open, "Open the page in the browser");
  app.add_option("--seconds", options.seconds, "End after so many; 0: with Ctrl+C")->check(CLI::NonNegativeNumber);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  return std::nullopt;
}

}  // namespace preview
