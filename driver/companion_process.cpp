#include "companion_process.h"

#include <algorithm>

namespace ombrel {

bool IsCompanionRunning(const std::vector<ProcessEntry>& processes) {
  if (processes.empty()) return false;
  return std::any_of(processes.begin() + 1, processes.end(),
                     [](const ProcessEntry& process) { return process.executableName == "Ombrel.exe"; });
}

}  // namespace ombrel
