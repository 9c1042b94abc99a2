#include "test_files/command_line.h"

#include <windows.h>

#include <stdexcept>

#include "base/owned_handle.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {
namespace {

using bench::OwnedHandle;

constexpr DWORD kTimeoutMs = 60'000;

OwnedHandle OpenInheritable(const wchar_t* path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return OwnedHandle(
      CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, disposition, 0, nullptr));
}

OwnedHandle Start(const std::string& line, const std::filesystem::path& workingFolder,
                  const std::filesystem::path& output) {
  const OwnedHandle nothing = OpenInheritable(L"NUL", GENERIC_READ, OPEN_EXISTING);
  const OwnedHandle file = OpenInheritable(output.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = nothing.Get();
  startup.hStdOutput = startup.hStdError = file.Get();
  std::wstring writable = FromUtf8(line).native();
  PROCESS_INFORMATION process{};
  if (CreateProcessW(nullptr, writable.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, workingFolder.c_str(),
                     &startup, &process) == 0) {
    throw std::runtime_error("cannot start " + line);
  }
  const OwnedHandle thread(process.hThread);
  return OwnedHandle(process.hProcess);
}

}  // namespace

Outcome RunCommandLine(const std::string& line, const std::filesystem::path& workingFolder) {
  const ScratchFolder folder;
  const OwnedHandle process = Start(line, workingFolder, folder.At("output.txt"));
  if (WaitForSingleObject(process.Get(), kTimeoutMs) != WAIT_OBJECT_0) {
    TerminateProcess(process.Get(), 1);
    throw std::runtime_error("does not end: " + line);
  }
  DWORD code = 0;
  GetExitCodeProcess(process.Get(), &code);
  return {static_cast<int>(code), folder.Read("output.txt")};
}

}  // namespace ombrel::test
