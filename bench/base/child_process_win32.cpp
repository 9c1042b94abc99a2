#include "base/child_process.h"

#include <stdexcept>
#include <utility>

#include "base/command_line.h"

namespace bench {
namespace {

constexpr DWORD kEndMs = 30'000;
constexpr UINT kKilled = 99;

struct Pipe {
  OwnedHandle readEnd, writeEnd;
};

SECURITY_ATTRIBUTES Inheritable() { return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE}; }

// The child inherits one end and must not inherit the other: it would keep its own pipe open.
Pipe MakePipe(bool childReads) {
  SECURITY_ATTRIBUTES inheritable = Inheritable();
  HANDLE readEnd = nullptr, writeEnd = nullptr;
  if (!CreatePipe(&readEnd, &writeEnd, &inheritable, 0)) throw std::runtime_error("cannot make a pipe");
  SetHandleInformation(childReads ? writeEnd : readEnd, HANDLE_FLAG_INHERIT, 0);
  return {OwnedHandle(readEnd), OwnedHandle(writeEnd)};
}

OwnedHandle MakeFile(const std::filesystem::path& path) {
  SECURITY_ATTRIBUTES inheritable = Inheritable();
  OwnedHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inheritable, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) throw std::runtime_error("cannot make " + path.string());
  return file;
}

}  // namespace

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                           Output output) {
  if (output == Output::kShared) {
    Start(program, arguments, GetStdHandle(STD_OUTPUT_HANDLE), GetStdHandle(STD_ERROR_HANDLE));
    return;
  }
  Pipe pipe = MakePipe(false);
  Start(program, arguments, pipe.writeEnd.Get(), GetStdHandle(STD_ERROR_HANDLE));
  output_ = std::move(pipe.readEnd);
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                           const std::filesystem::path& output) {
  const OwnedHandle file = MakeFile(output);
  Start(program, arguments, file.Get(), file.Get());
}

void ChildProcess::Start(const std::filesystem::path& program, const std::vector<std::string>& arguments, HANDLE output,
                         HANDLE error) {
  std::wstring line = CommandLine(program, arguments);
  Pipe input = MakePipe(true);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input.readEnd.Get();
  startup.hStdOutput = output;
  startup.hStdError = error;
  PROCESS_INFORMATION started{};
  // Detached: the process that serves a console outlives it for a while, and keeps this program's output open.
  if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr, nullptr,
                      &startup, &started)) {
    throw std::runtime_error("cannot start " + program.string());
  }
  const OwnedHandle thread(started.hThread);
  process_ = OwnedHandle(started.hProcess);
  input_ = std::move(input.writeEnd);
  id_ = started.dwProcessId;
}

std::optional<std::uint32_t> ChildProcess::WaitForEnd(std::uint32_t timeoutMs) const {
  DWORD code = 0;
  if (WaitForSingleObject(process_.Get(), timeoutMs) != WAIT_OBJECT_0) return std::nullopt;
  return GetExitCodeProcess(process_.Get(), &code) ? std::optional<std::uint32_t>(code) : std::nullopt;
}

void ChildProcess::Kill() {
  if (!process_) return;
  TerminateProcess(process_.Get(), kKilled);
  WaitForSingleObject(process_.Get(), kEndMs);
}

}  // namespace bench
