#include "support/process_list.h"

namespace ombrel {
namespace test {

Processes& TheProcesses() {
  static Processes processes;
  return processes;
}

}  // namespace test

using test::TheProcesses;

std::uint32_t CurrentProcessId() { return 4660; }
std::vector<ProcessEntry> ListProcesses() { return TheProcesses().listed; }
std::string OwnExecutablePath() { return TheProcesses().ownPath; }
void TerminateProcessById(std::uint32_t id) { TheProcesses().ended.push_back(id); }
void TerminateOwnProcess() { TheProcesses().isOwnEnded = true; }

}  // namespace ombrel
