#include "companion_child.h"

#include <atomic>
#include <stdexcept>

namespace bench::scenarios {
namespace {

constexpr DWORD kEndMs = 30'000;
constexpr UINT kKilled = 99;

std::atomic<int> childNumber = 0;

OwnedHandle MakeEvent(const std::string& name) { return OwnedHandle(CreateEventA(nullptr, TRUE, FALSE, name.c_str())); }

}  // namespace

CompanionChild::CompanionChild(const std::string& program, const std::string& point) {
  const std::string own = std::to_string(GetCurrentProcessId());
  const std::string events = "ombrel_scenario_" + own + "_" + std::to_string(++childNumber);
  arrived_ = MakeEvent(events + "_arrived");
  wentOn_ = MakeEvent(events + "_went_on");
  std::string line = "\"" + program + "\" " + point + " " + events + " " + own;
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started{};
  // Detached: the process that serves a console outlives it for a while, and keeps this program's output open.
  if (!CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr,
                      &startup, &started)) {
    throw std::runtime_error("cannot start " + program);
  }
  CloseHandle(started.hThread);
  process_ = OwnedHandle(started.hProcess);
  if (point == "idle" && !WaitUntilArrived(kEndMs)) throw std::runtime_error(program + " does not run");
}

bool CompanionChild::WaitUntilArrived(std::uint32_t timeoutMs) const {
  const HANDLE either[] = {arrived_.Get(), process_.Get()};
  return WaitForMultipleObjects(2, either, FALSE, timeoutMs) == WAIT_OBJECT_0;
}

bool CompanionChild::WentOn() const { return WaitForSingleObject(wentOn_.Get(), 0) == WAIT_OBJECT_0; }

void CompanionChild::Kill() {
  if (!process_) return;
  TerminateProcess(process_.Get(), kKilled);
  WaitForSingleObject(process_.Get(), kEndMs);
  process_.Reset();
}

}  // namespace bench::scenarios
