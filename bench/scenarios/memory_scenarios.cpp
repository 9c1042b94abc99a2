// Allocations of the driver that fail, one at a time.
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "base/wait.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "frame_companion.h"
#include "sharing/import_patch.h"

namespace bench::scenarios {

using namespace companion;

namespace {

using std::chrono::milliseconds;

// Fault injection for the driver's malloc. One allocation at a time: throwing bad_alloc allocates as well.
class FailingMalloc {
 public:
  // From now on the allocation after `count` others fails, counted on one thread or, for thread 0, on all but this one.
  static void FailAfter(int count, DWORD thread) {
    exempt = GetCurrentThreadId();
    onlyThread = thread;
    left = count;
  }
  // True when one has failed meanwhile.
  static bool Stop() { return left.exchange(kNever) < 0; }

  static void Install(void* module) {
    if (!ReplaceImport(static_cast<HMODULE>(module), "msvcrt.dll", "malloc", reinterpret_cast<void*>(&Allocate))) {
      throw std::runtime_error("the driver has no import of malloc");
    }
  }

 private:
  static constexpr int kNever = INT_MAX;

  static void* Allocate(std::size_t size) {
    const DWORD thread = GetCurrentThreadId();
    const bool counts = onlyThread != 0 ? thread == onlyThread : thread != exempt;
    if (counts && left != kNever && left-- == 0) return nullptr;
    return std::malloc(size);
  }

  static inline std::atomic<int> left = kNever;
  static inline std::atomic<DWORD> onlyThread = 0;
  static inline std::atomic<DWORD> exempt = 0;
};

// Every allocation that the reader makes for a message fails once; then the same message has to do.
void OnReader(ScenarioRun& run) {
  static float x = 0;
  DriverLife life(run, Mode::kLayers, FailingMalloc::Install);
  life.Start();
  FrameCompanion companion;
  if (!run.Check(companion.Connect() && PoseArrives(life, companion.Pipes(), ++x), "poses arrive")) return;
  const DWORD reader = life.runtime.Poses().Latest(0)->threadId;
  const auto noController = std::array{EncodeFramerateUpdate(60), EncodeRecenterRequest(), EncodeTrackingState(0)};
  int failures = 0;
  std::uint32_t controllerId = 1;
  const auto send = [&](const Bytes& message, int allocation) {
    FailingMalloc::FailAfter(allocation, reader);
    run.Check(companion.Pipes().Send(message) && PoseArrives(life, companion.Pipes(), ++x), "the link goes on");
    const bool failed = FailingMalloc::Stop();
    if (failed) ++failures;
    return failed;
  };
  for (const Bytes& message : noController) {
    for (int allocation = 0; send(message, allocation); ++allocation) {
    }
  }
  int perController = 0;
  for (bool failed = true; failed && perController < 40; ++perController) {
    const Bytes record = EncodeControllerUpdate({.controllerId = ++controllerId});
    failed = send(record, perController);
    run.Check(companion.Pipes().Send(record) && PoseArrives(life, companion.Pipes(), ++x), "the link goes on");
    run.Check(life.Controller(controllerId).has_value(),
              "a controller is announced after allocation " + std::to_string(perController) + " failed for it");
  }
  run.Check(failures > 0, "allocations fail");
  run.Figure("%d allocations failed on the reader thread", failures);
  companion.Close();
  CheckNewCompanion(run, life);
}

// Every allocation of the link's threads fails once, while a connection is made and used.
void OnConnection(ScenarioRun& run) {
  DriverLife life(run, Mode::kLayers, FailingMalloc::Install);
  life.Start();
  int failures = 0;
  bool failed = true;
  for (int allocation = 0; failed; ++allocation) {
    FrameCompanion companion;
    FailingMalloc::FailAfter(allocation, 0);
    CheckConnection(run, life, companion, 2);
    failed = FailingMalloc::Stop();
    if (failed) ++failures;
    if (!run.Failures().empty()) break;
  }
  run.Check(failures > 0, "allocations fail");
  run.Figure("%d allocations failed while connecting", failures);
  CheckNewCompanion(run, life);
  life.Cleanup();
  life.Unload();
  run.Check(GetModuleHandleA("driver_ombrel.dll") == nullptr, "the library goes");
}

constexpr std::array kScenarios{
    Scenario{"no_memory_for_messages", OnReader},
    Scenario{"no_memory_for_connections", OnConnection},
};

}  // namespace

std::span<const Scenario> MemoryScenarios() { return kScenarios; }

}  // namespace bench::scenarios
