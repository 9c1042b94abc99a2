#include <unistd.h>

#include "platform/process.h"

namespace ombrel {

// Natively there is no runtime and no companion program to look for: the list is empty and nothing is ended.
std::uint32_t CurrentProcessId() { return static_cast<std::uint32_t>(getpid()); }
std::vector<ProcessEntry> ListProcesses() { return {}; }
std::string OwnExecutablePath() { return {}; }
void TerminateProcessById(std::uint32_t /*id*/) {}
void TerminateOwnProcess() {}

}  // namespace ombrel
