// A companion's process is killed, at one point of its life in each scenario; then a new one comes.
#include <windows.h>

#include <array>
#include <thread>

#include "base/wait.h"
#include "companion_child.h"
#include "frame_companion.h"

namespace bench::scenarios {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kArrival{60'000};
constexpr std::uint32_t kControllerId = 7;  // the companion's

// The runtime goes on while the companion comes to its point.
bool PlayUntilArrived(DriverLife& life, const CompanionChild& child) {
  return WaitUntil(
      [&] {
        life.Present();
        life.RunFrame();
        return child.HasArrived();
      },
      kArrival);
}

void PlayOn(DriverLife& life) {
  for (int frame = 0; frame < 5; ++frame) {
    life.Present();
    life.WaitForNext();
    life.RunFrame();
  }
}

void KillAt(ScenarioRun& run, const char* point) {
  DriverLife& life = DriverLife::Shared(run);
  {
    CompanionChild child(run.companion, point);
    if (!run.Check(PlayUntilArrived(life, child), "the companion comes to its point")) return;
    child.Kill();
    run.Check(!child.WentOn(), "the companion is killed at its point");
  }
  PlayOn(life);
  CheckNewCompanion(run, life);
}

void KilledWhileWriteWaits(ScenarioRun& run) {
  DriverLife& life = DriverLife::Shared(run);
  {
    CompanionChild child(run.companion, "not_reading");
    if (!run.Check(child.WaitUntilArrived(60'000), "the companion comes to its point")) return;
    const auto known = [&] { return life.Controller(kControllerId).has_value(); };
    if (!run.Check(WaitUntil(known, kArrival), "the controller is announced")) return;
    life.ActivatePending();
    const auto container = FakeProperties::ContainerOf(life.Controller(kControllerId)->index);
    life.runtime.Host().PushHaptic(container, 1, 0.01F, 100, 1);
    life.RunFrame();
    std::this_thread::sleep_for(milliseconds(100));  // the write begins meanwhile, and waits
    child.Kill();
  }
  PlayOn(life);
  CheckNewCompanion(run, life);
}

constexpr std::array kScenarios{
    Scenario{"killed_between_pipes", [](ScenarioRun& run) { KillAt(run, "between_pipes"); }, true},
    Scenario{"killed_in_header", [](ScenarioRun& run) { KillAt(run, "in_header"); }, true},
    Scenario{"killed_in_payload", [](ScenarioRun& run) { KillAt(run, "in_payload"); }, true},
    Scenario{"killed_holding_texture", [](ScenarioRun& run) { KillAt(run, "holding_texture"); }, true},
    Scenario{"killed_while_write_waits", KilledWhileWriteWaits, true},
};

}  // namespace

std::span<const Scenario> KillScenarios() { return kScenarios; }

}  // namespace bench::scenarios
