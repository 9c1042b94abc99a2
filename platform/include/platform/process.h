#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ombrel {

struct ProcessEntry {
  std::uint32_t id = 0;
  std::string executableName;  // without its folder, letter case as the system keeps it
};

[[nodiscard]] std::uint32_t CurrentProcessId();

// The system's processes in the order in which it lists them. Empty when it does not.
[[nodiscard]] std::vector<ProcessEntry> ListProcesses();

// Full path of this process's executable, in the system's code page. Cut off after 259 characters; empty when it
// cannot be told.
[[nodiscard]] std::string OwnExecutablePath();

// Both end the process at once, exit code 0. A process that may not be opened lives on.
void TerminateProcessById(std::uint32_t id);
void TerminateOwnProcess();

}  // namespace ombrel
