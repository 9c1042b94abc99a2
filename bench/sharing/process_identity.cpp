#include "process_identity.h"

namespace bench {

namespace {

std::uint64_t StartTime(HANDLE process) {
  FILETIME created{};
  FILETIME exited{};
  FILETIME kernel{};
  FILETIME user{};
  GetProcessTimes(process, &created, &exited, &kernel, &user);
  return (static_cast<std::uint64_t>(created.dwHighDateTime) << 32) | created.dwLowDateTime;
}

}  // namespace

ProcessIdentity CurrentProcessIdentity() { return {GetCurrentProcessId(), StartTime(GetCurrentProcess())}; }

ProcessWatch::ProcessWatch(const ProcessIdentity& identity) {
  OwnedHandle opened(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, identity.id));
  if (!opened) {
    alive = GetLastError() == ERROR_ACCESS_DENIED;
    return;
  }
  if (StartTime(opened.Get()) != identity.startTime) return;
  if (WaitForSingleObject(opened.Get(), 0) != WAIT_TIMEOUT) return;
  alive = true;
  process = std::move(opened);
}

}  // namespace bench
