#include <windows.h>
// windows.h must come first.
#include <tlhelp32.h>

#include <algorithm>
#include <array>

#include "platform/owned_handle.h"
#include "platform/process.h"

namespace ombrel {

std::uint32_t CurrentProcessId() { return GetCurrentProcessId(); }

std::vector<ProcessEntry> ListProcesses() {
  std::vector<ProcessEntry> processes;
  const OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot) return processes;
  PROCESSENTRY32 entry{};
  static_assert(sizeof(entry) == 304);
  entry.dwSize = sizeof(entry);
  for (BOOL more = Process32First(snapshot.Get(), &entry); more == TRUE; more = Process32Next(snapshot.Get(), &entry)) {
    processes.push_back({entry.th32ProcessID, entry.szExeFile});
  }
  return processes;
}

std::string OwnExecutablePath() {
  std::array<char, MAX_PATH> path{};
  const DWORD length = GetModuleFileNameA(nullptr, path.data(), MAX_PATH);
  // A longer path is cut off: its beginning is what counts.
  return {path.data(), std::min<std::size_t>(length, path.size() - 1)};
}

void TerminateProcessById(std::uint32_t id) {
  const OwnedHandle process(OpenProcess(PROCESS_ALL_ACCESS, FALSE, id));
  if (process) TerminateProcess(process.Get(), 0);
}

void TerminateOwnProcess() { TerminateProcess(GetCurrentProcess(), 0); }

}  // namespace ombrel
