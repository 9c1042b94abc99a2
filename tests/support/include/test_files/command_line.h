#pragma once

#include <filesystem>
#include <string>

namespace ombrel::test {

// How a program ended, and what it printed to standard output and standard error.
struct Outcome {
  int exitCode = -1;
  std::string output;
};

// Runs a command line (UTF-8) in a folder, with nothing on standard input, in a console without a window: scripts change
// the code page of theirs. Throws std::runtime_error when it does not start, or has not ended within a minute.
[[nodiscard]] Outcome RunCommandLine(const std::string& line, const std::filesystem::path& workingFolder);

}  // namespace ombrel::test
