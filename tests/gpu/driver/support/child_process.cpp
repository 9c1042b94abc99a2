#include "gpu_support/child_process.h"

#include <array>
#include <stdexcept>

namespace ombrel::test {
namespace {

using bench::OwnedHandle;

constexpr DWORD kEndMs = 30'000;

struct Pipe {
  OwnedHandle readEnd, writeEnd;
};

// The child inherits one end and must not inherit the other: it would keep its own pipe open.
Pipe MakePipe(bool childReads) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE readEnd = nullptr, writeEnd = nullptr;
  if (!CreatePipe(&readEnd, &writeEnd, &inheritable, 0)) throw std::runtime_error("cannot make a pipe");
  SetHandleInformation(childReads ? writeEnd : readEnd, HANDLE_FLAG_INHERIT, 0);
  return {OwnedHandle(readEnd), OwnedHandle(writeEnd)};
}

}  // namespace

ChildProcess::ChildProcess(const std::string& program) {
  Pipe input = MakePipe(true), output = MakePipe(false);
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input.readEnd.Get();
  startup.hStdOutput = output.writeEnd.Get();
  startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  if (!CreateProcessA(program.c_str(), nullptr, nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                      &started)) {
    throw std::runtime_error("cannot start " + program);
  }
  CloseHandle(started.hThread);
  process_ = OwnedHandle(started.hProcess);
  input_ = std::move(input.writeEnd);
  output_ = std::move(output.readEnd);
  // Gone here, so that the pipe ends with the child.
  output.writeEnd.Reset();
  reader_ = std::thread([this] { ReadLines(); });
}

ChildProcess::~ChildProcess() {
  Kill();
  reader_.join();
}

void ChildProcess::Kill() {
  TerminateProcess(process_.Get(), 99);
  WaitForSingleObject(process_.Get(), kEndMs);
}

void ChildProcess::ReadLines() {
  std::string pending;
  std::array<char, 4096> buffer;
  DWORD count = 0;
  while (ReadFile(output_.Get(), buffer.data(), buffer.size(), &count, nullptr) && count != 0) {
    pending.append(buffer.data(), count);
    for (std::size_t end; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
      const std::lock_guard lock(mutex_);
      lines_.push_back(pending.substr(0, end));
      changed_.notify_all();
    }
  }
  const std::lock_guard lock(mutex_);
  ended_ = true;
  changed_.notify_all();
}

std::string ChildProcess::Ask(const std::string& line, std::chrono::milliseconds timeout) {
  const std::string text = line + '\n';
  DWORD written = 0;
  if (!WriteFile(input_.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) {
    throw std::runtime_error("the program has ended: " + line);
  }
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, timeout, [this] { return !lines_.empty() || ended_; });
  if (lines_.empty()) throw std::runtime_error("no answer to " + line);
  const std::string answer = lines_.front();
  lines_.pop_front();
  return answer;
}

}  // namespace ombrel::test
