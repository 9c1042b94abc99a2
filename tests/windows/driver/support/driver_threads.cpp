#include "support/driver_threads.h"

#include <windows.h>
// windows.h must come first.
#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <cstdint>
#include <vector>

#include "base/owned_handle.h"

namespace ombrel::test {
namespace {

constexpr auto kThreadStartAddress = static_cast<THREADINFOCLASS>(9);

std::vector<DWORD> ThreadIds() {
  std::vector<DWORD> ids;
  const bench::OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Thread32First(snapshot.Get(), &entry); more != 0; more = Thread32Next(snapshot.Get(), &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ids.push_back(entry.th32ThreadID);
  }
  return ids;
}

std::uintptr_t StartAddress(DWORD threadId) {
  const bench::OwnedHandle thread(OpenThread(THREAD_QUERY_INFORMATION, FALSE, threadId));
  std::uintptr_t address = 0;
  if (NtQueryInformationThread(thread.Get(), kThreadStartAddress, &address, sizeof(address), nullptr) != 0) return 0;
  return address;
}

}  // namespace

std::size_t ThreadsOfModule(void* module) {
  MODULEINFO information{};
  GetModuleInformation(GetCurrentProcess(), static_cast<HMODULE>(module), &information, sizeof(information));
  const auto begin = reinterpret_cast<std::uintptr_t>(information.lpBaseOfDll);
  std::size_t count = 0;
  for (const DWORD id : ThreadIds()) {
    const std::uintptr_t address = StartAddress(id);
    if (address >= begin && address < begin + information.SizeOfImage) ++count;
  }
  return count;
}

std::size_t ThreadsOfProcess() { return ThreadIds().size(); }

}  // namespace ombrel::test
