#include "companion_watch.h"

#include <tlhelp32.h>

#include <array>
#include <cstring>
#include <utility>

namespace bench {

std::uint32_t FindProcess(const char* name) {
  const OwnedHandle list(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  for (BOOL any = Process32First(list.Get(), &entry); any; any = Process32Next(list.Get(), &entry)) {
    if (std::strcmp(entry.szExeFile, name) == 0) return entry.th32ProcessID;
  }
  return 0;
}

CompanionWatch::CompanionWatch(std::uint32_t processId, const RecordingFile& file, std::function<void()> whenEnded)
    : file_(file),
      whenEnded_(std::move(whenEnded)),
      process_(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId)),
      stop_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
  file_.Add(checker::EventKind::kProcessFound, processId);
  thread_ = std::thread([this, processId] { Run(processId); });
}

CompanionWatch::~CompanionWatch() {
  SetEvent(stop_.Get());
  thread_.join();
}

void CompanionWatch::Run(std::uint32_t processId) {
  const std::array handles{stop_.Get(), process_.Get()};
  if (!process_ || WaitForMultipleObjects(2, handles.data(), FALSE, INFINITE) == WAIT_OBJECT_0) return;
  DWORD code = 0;
  GetExitCodeProcess(process_.Get(), &code);
  file_.Add(checker::EventKind::kProcessEnded, processId, code);
  // The driver sees the end by its pipes, a moment later.
  if (WaitForSingleObject(stop_.Get(), 1000) == WAIT_TIMEOUT) whenEnded_();
}

}  // namespace bench
