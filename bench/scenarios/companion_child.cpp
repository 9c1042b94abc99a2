#include "companion_child.h"

#include <atomic>
#include <stdexcept>

#include "sharing/choice.h"

namespace bench::scenarios {
namespace {

constexpr std::uint32_t kStartMs = 30'000;

// Named events of this process and no other child.
std::string NextEvents() {
  static std::atomic<int> last = 0;
  return "ombrel_scenario_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++last);
}

OwnedHandle MakeEvent(const std::string& name) { return OwnedHandle(CreateEventA(nullptr, TRUE, FALSE, name.c_str())); }

}  // namespace

CompanionChild::CompanionChild(const std::string& program, const std::string& point)
    : events_(NextEvents()),
      arrived_(MakeEvent(events_ + "_arrived")),
      wentOn_(MakeEvent(events_ + "_went_on")),
      process_(program, {point, events_, "--sharing", NameOf(SharingInUse())}) {
  if (point == "idle" && !WaitUntilArrived(kStartMs)) throw std::runtime_error(program + " does not run");
}

bool CompanionChild::WaitUntilArrived(std::uint32_t timeoutMs) const {
  const HANDLE either[] = {arrived_.Get(), process_.Process()};
  return WaitForMultipleObjects(2, either, FALSE, timeoutMs) == WAIT_OBJECT_0;
}

bool CompanionChild::WentOn() const { return WaitForSingleObject(wentOn_.Get(), 0) == WAIT_OBJECT_0; }

}  // namespace bench::scenarios
