#include "support/named_process.h"

#include <windows.h>
// windows.h must come first.
#include <tlhelp32.h>

#include <chrono>
#include <stdexcept>

#include "base/wait.h"
#include "support/test_files.h"

namespace ombrel::test {
namespace {

constexpr std::chrono::seconds kStartTimeout{20};
constexpr const char* kLifetimeSeconds = "3600";  // ends with its standard input in any case

// The name that the system lists a process under; empty when it lists it no longer.
std::string ListedName(std::uint32_t id) {
  const bench::OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32 entry{};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Process32First(snapshot.Get(), &entry); more != 0; more = Process32Next(snapshot.Get(), &entry)) {
    if (entry.th32ProcessID == id) return entry.szExeFile;
  }
  return {};
}

}  // namespace

NamedProcess::NamedProcess(const std::string& executableName) : folder_(MakeTemporaryFolder()) {
  const std::filesystem::path program = folder_ / executableName;
  std::filesystem::copy_file(IdleProgram(), program);
  Start(program);
  if (!bench::WaitUntil([&] { return ListedName(id_) == executableName; }, kStartTimeout)) {
    throw std::runtime_error(executableName + " is not listed");
  }
}

NamedProcess::~NamedProcess() {
  End();
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void NamedProcess::Start(const std::filesystem::path& program) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  if (CreatePipe(&readEnd, &writeEnd, &inheritable, 0) == 0) throw std::runtime_error("no pipe");
  const bench::OwnedHandle childInput(readEnd);
  standardInput_ = bench::OwnedHandle(writeEnd);
  SetHandleInformation(writeEnd, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = readEnd;
  PROCESS_INFORMATION information{};
  // Detached: the process that serves a console outlives it for a while, and keeps this program's output open.
  std::string commandLine = "\"" + program.string() + "\" " + kLifetimeSeconds;
  if (CreateProcessA(program.string().c_str(), commandLine.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr,
                     nullptr, &startup, &information) == 0) {
    throw std::runtime_error("cannot start " + program.string());
  }
  CloseHandle(information.hThread);
  process_ = bench::OwnedHandle(information.hProcess);
  id_ = information.dwProcessId;
}

bool NamedProcess::IsRunning() const { return WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT; }

std::optional<std::uint32_t> NamedProcess::WaitForEnd(std::uint32_t timeoutMs) const {
  DWORD code = 0;
  if (WaitForSingleObject(process_.Get(), timeoutMs) != WAIT_OBJECT_0) return std::nullopt;
  return GetExitCodeProcess(process_.Get(), &code) != 0 ? std::optional<std::uint32_t>(code) : std::nullopt;
}

void NamedProcess::End() {
  if (!process_) return;
  TerminateProcess(process_.Get(), 1);
  WaitForSingleObject(process_.Get(), INFINITE);
  process_.Reset();
  static_cast<void>(bench::WaitUntil([&] { return ListedName(id_).empty(); }, kStartTimeout));
}

}  // namespace ombrel::test
