#include "peer_process.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace bench::test {

namespace {

constexpr DWORD kPatienceMs = 30'000;

std::string UniqueSuffix() {
  static std::atomic<int> last{0};
  return std::to_string(GetCurrentProcessId()) + "." + std::to_string(++last);
}

}  // namespace

PeerProcess::PeerProcess(const std::vector<std::string>& arguments) {
  const char* const program = std::getenv("SHARING_PEER");
  if (program == nullptr) throw std::runtime_error("SHARING_PEER does not name the peer program");
  std::string line = '"' + std::string(program) + '"';
  for (const std::string& argument : arguments) line += " \"" + argument + '"';
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  if (!CreateProcessA(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process_)) {
    throw std::runtime_error("cannot start the peer program");
  }
}

PeerProcess::~PeerProcess() {
  Kill();
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

DWORD PeerProcess::Wait() const {
  DWORD code = kNotEnded;
  if (WaitForSingleObject(process_.hProcess, kPatienceMs) == WAIT_OBJECT_0)
    GetExitCodeProcess(process_.hProcess, &code);
  return code;
}

void PeerProcess::Kill() const {
  TerminateProcess(process_.hProcess, 99);
  WaitForSingleObject(process_.hProcess, kPatienceMs);
}

PeerEvent::PeerEvent()
    : name_("Local\\SharingTest." + UniqueSuffix()), event_(CreateEventA(nullptr, TRUE, FALSE, name_.c_str())) {}

bool PeerEvent::Wait() const { return WaitForSingleObject(event_, kPatienceMs) == WAIT_OBJECT_0; }

std::string HandleText(HANDLE handle) {
  return std::to_string(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle)));
}

std::string TemporaryFile() {
  const auto path = std::filesystem::temp_directory_path() / ("sharing_test." + UniqueSuffix());
  std::filesystem::remove(path);
  return path.string();
}

}  // namespace bench::test
