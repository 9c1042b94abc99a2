#include "link/session_shutdown.h"

namespace ombrel {

void EndRuntimeSession() {
  const std::string path = OwnExecutablePath();
  if (path.empty()) return;
  if (IsRuntimeServerPath(path)) {
    TerminateOwnProcess();
    return;
  }
  if (const auto monitor = FindMonitorProcess(ListProcesses())) TerminateProcessById(*monitor);
}

bool IsRuntimeServerPath(std::string_view path) { return path.starts_with("vrserver"); }

std::optional<std::uint32_t> FindMonitorProcess(const std::vector<ProcessEntry>& processes) {
  std::optional<std::uint32_t> found;
  for (std::size_t i = 1; i < processes.size(); ++i) {
    if (processes[i].executableName == "vrmonitor.exe") found = processes[i].id;
  }
  return found;
}

}  // namespace ombrel
