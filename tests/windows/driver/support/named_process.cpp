#include "support/named_process.h"

#include <windows.h>
// windows.h must come first.
#include <tlhelp32.h>

#include <chrono>
#include <stdexcept>
#include <vector>

#include "base/wait.h"

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

NamedProcess::NamedProcess(const std::string& executableName) {
  const std::filesystem::path program = folder_.At(executableName);
  std::filesystem::copy_file(FromEnvironment("OMBREL_TEST_IDLE_PROGRAM"), program);
  process_ = std::make_unique<bench::ChildProcess>(program, std::vector<std::string>{kLifetimeSeconds});
  if (!bench::WaitUntil([&] { return ListedName(process_->Id()) == executableName; }, kStartTimeout)) {
    throw std::runtime_error(executableName + " is not listed");
  }
}

NamedProcess::~NamedProcess() {
  const std::uint32_t id = process_->Id();
  process_.reset();
  static_cast<void>(bench::WaitUntil([&] { return ListedName(id).empty(); }, kStartTimeout));
}

}  // namespace ombrel::test
