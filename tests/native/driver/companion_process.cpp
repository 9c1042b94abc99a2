// The system's processes as the driver sees them natively, in the place of platform/'s own: the companion is running.
#include "platform/process.h"

namespace ombrel {

std::uint32_t CurrentProcessId() { return 4660; }
std::vector<ProcessEntry> ListProcesses() { return {{0, "[System Process]"}, {8, "Ombrel.exe"}}; }
std::string OwnExecutablePath() { return {}; }
void TerminateProcessById(std::uint32_t /*id*/) {}
void TerminateOwnProcess() {}

}  // namespace ombrel
