// Direct3D calls of the driver that fail: each kind in turn, and all of them from any point on.
#include <windows.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/clock.h"
#include "base/wait.h"
#include "failing_calls.h"
#include "frame_companion.h"
#include "resources.h"

namespace bench::scenarios {
namespace {

constexpr std::array kWhileRunning{
    DeviceCall::kCreateBuffer,
    DeviceCall::kCreateTexture2D,
    DeviceCall::kCreateShaderResourceView,
    DeviceCall::kCreateRenderTargetView,
    DeviceCall::kCreateBlendState,
    DeviceCall::kCreateSamplerState,
    DeviceCall::kOpenSharedResource,
    DeviceCall::kGetSharedHandle,
    DeviceCall::kQueryKeyedMutex,
    DeviceCall::kMap,
    DeviceCall::kAcquireSync,
    DeviceCall::kReleaseSync,
};
constexpr std::array kAtStart{DeviceCall::kCreateDevice, DeviceCall::kCreateVertexShader,
                              DeviceCall::kCreatePixelShader};

constexpr int kFrames = 4, kMostFrames = 300;

// A connection with frames, whatever comes of them: only poses are looked for. On a busy machine a few frames may be over
// before the driver has made what they need: there are more of them until `isSeen`.
template <typename Predicate>
void LiveThrough(ScenarioRun& run, DriverLife& life, Predicate isSeen) {
  static float x = 0;
  FrameCompanion companion;
  if (!run.Check(companion.Connect(), "the driver connects while calls fail")) return;
  const auto set = life.HasLayers() ? life.CreateSwapSet() : DriverLife::SwapSet{};
  {
    const PoseStream poses(companion.Pipes());  // a finished texture waits for one
    for (int frame = 0; frame < kFrames || (!isSeen() && frame < kMostFrames); ++frame) {
      if (life.HasLayers()) life.SubmitLayer(set[0], 1);
      life.Present(set[2]);
      static_cast<void>(companion.TakeAnnouncement(frame == 1 ? 30 : 0));
      life.WaitForNext();
      life.RunFrame();
    }
  }
  if (life.HasLayers()) life.DestroySwapSet(set[0]);
  run.Check(PoseArrives(life, companion.Pipes(), ++x), "poses arrive while calls fail");
}

void LiveThrough(ScenarioRun& run, DriverLife& life) {
  LiveThrough(run, life, [] { return true; });
}

void CheckFramesAgain(ScenarioRun& run, DriverLife& life) {
  FrameCompanion companion;
  CheckConnection(run, life, companion);
}

void EachCallFails(ScenarioRun& run) {
  Watching<FailingCalls> calls;
  DriverLife& life = DriverLife::Shared(run);
  int failed = 0;
  for (const DeviceCall call : kWhileRunning) {
    calls.FailKind(call);
    LiveThrough(run, life, [&calls] { return calls.Failed() > 0; });
    run.Check(calls.Failed() > 0, "a call of kind " + std::to_string(static_cast<int>(call)) + " is made");
    failed += calls.Failed();
    calls.Allow();
    if (run.isLong) CheckFramesAgain(run, life);
  }
  run.Figure("%d calls of %zu kinds failed", failed, kWhileRunning.size());
  CheckNewCompanion(run, life);
}

void EachStartCallFails(ScenarioRun& run) {
  Watching<FailingCalls> calls;
  for (const DeviceCall call : std::span(kAtStart).first(run.isLong ? kAtStart.size() : 1)) {
    DriverLife life(run);
    calls.FailKind(call);
    life.Start();
    LiveThrough(run, life);
    run.Check(calls.Failed() > 0, "a call of kind " + std::to_string(static_cast<int>(call)) + " is made");
    calls.Allow();
  }
  if (!run.isLong) run.Skip("shaders that cannot be made: in the long form only, a start takes its time");
  DriverLife life(run);
  life.Start();
  CheckNewCompanion(run, life);
}

// How many calls can fail while `play` runs.
template <typename Play>
int CountCalls(FailingCalls& calls, Play play) {
  calls.Allow();
  play();
  return calls.Seen();
}

void FailFromAnyPoint(ScenarioRun& run, Mode mode) {
  Watching<FailingCalls> calls;
  DriverLife life(run, mode);
  life.Start();
  const int count = CountCalls(calls, [&] { LiveThrough(run, life); });
  const int step = run.isLong ? 1 : 1 + count / 3;
  int points = 0;
  for (int point = 0; point < count; point += step, ++points) {
    calls.FailAfter(point);
    LiveThrough(run, life);
    calls.Allow();
    if (run.isLong) CheckFramesAgain(run, life);
  }
  if (points < count) run.Skip(std::to_string(count - points) + " points: in the long form only, there is no time");
  run.Figure("%d points of %d", points, count);
  CheckNewCompanion(run, life);
}

// Frames for a companion who offers its pipes, until it is alone.
void PlayWithoutDevice(ScenarioRun& run, DriverLife& life) {
  FrameCompanion companion;
  static_cast<void>(companion.Pipes().Open());
  const auto set = life.CreateSwapSet();
  for (int frame = 0; frame < 10; ++frame) {
    life.SubmitLayer(set[0], 1);
    life.Present();
    life.WaitForNext();
    life.RunFrame();
  }
  run.Check(companion.Pipes().WaitForDisconnection(kPatienceMs), "there is no connection without a device");
}

// The device is gone for good at some point of Init, or later, and no other can be made. The next Init makes one.
void DeviceRemoved(ScenarioRun& run) {
  Watching<FailingCalls> calls;
  int points = 0;
  for (const int point : run.isLong ? std::vector{1, 2, 3, 4, 5, 6, 8, 12, 20, 40} : std::vector{20}) {
    DriverLife life(run);
    calls.RemoveAfter(point, INT_MAX);
    life.Start();
    PlayWithoutDevice(run, life);
    PlayWithoutDevice(run, life);
    life.Cleanup();
    calls.Allow();
    life.Start();
    CheckFramesAgain(run, life);
    ++points;
  }
  run.Figure("removed for good at %d points, frames after the next Init", points);
}

// Until a new companion has a frame from a new device. How long that took, from the moment that the device was there.
double LoseDevice(ScenarioRun& run, DriverLife& life, FailingCalls& calls, std::unique_ptr<FrameCompanion>& companion) {
  static float x = 0;
  calls.RemoveAfter(0, 1);
  const auto hasEnded = [&] {
    life.Present();
    return !companion->Pipes().Connected();
  };
  {
    const PoseStream poses(companion->Pipes());  // a finished texture waits for one
    if (!run.Check(WaitUntil(hasEnded, std::chrono::milliseconds(kPatienceMs)), "a connection ends with its device")) {
      return 0;
    }
  }
  companion = std::make_unique<FrameCompanion>();
  if (!run.Check(companion->Connect(), "the driver connects when it has a device")) return 0;
  if (life.HasLayers()) life.RenewSwapSet();
  CheckFrames(run, life, *companion, 1);
  const double tookMs = TicksToMilliseconds(NowTicks() - calls.RemadeTicks());
  run.Check(PoseArrives(life, companion->Pipes(), ++x), "poses arrive");
  return tookMs;
}

void CheckLog(ScenarioRun& run, DriverLife& life, int losses) {
  const auto lines = life.runtime.Log().Lines();
  run.Check(std::ranges::count(lines, "Graphics device lost, reason: -2005270523\n") == losses, "each loss is logged");
  run.Check(std::ranges::count(lines, "Graphics device made anew\n") == losses, "each new device is logged");
}

void DeviceLost(ScenarioRun& run, Mode mode) {
  constexpr double kMostMs = 2000;
  constexpr std::int64_t kMostBytes = 64 * 1024 * 1024;  // Wine's devices leave memory behind
  const int rounds = run.Rounds(50, 2);
  Watching<FailingCalls> calls;
  DriverLife life(run, mode, WatchHeap);
  life.Start();
  auto companion = std::make_unique<FrameCompanion>();
  if (!CheckConnection(run, life, *companion)) return;
  Growth growth(rounds);
  double longestMs = 0;
  PlayRounds(run, growth, rounds, [&] { longestMs = std::max(longestMs, LoseDevice(run, life, calls, companion)); });
  run.Figure("%d losses, a frame within %.0f ms of each new device", rounds, longestMs);
  run.Check(longestMs <= kMostMs, "frames go on within two seconds");
  CheckLog(run, life, rounds);
  if (run.isLong) {
    growth.Judge(run, kMostBytes);
  } else {
    run.Skip("what grows: in the long form only, a device takes its time");
  }
}

constexpr std::array kScenarios{
    Scenario{"each_call_fails", EachCallFails, true, true},
    Scenario{"each_start_call_fails", EachStartCallFails, false, true},
    Scenario{"calls_fail_from_any_point", [](ScenarioRun& run) { FailFromAnyPoint(run, Mode::kLayers); }, false, true},
    Scenario{"calls_fail_from_any_point_virtual", [](ScenarioRun& run) { FailFromAnyPoint(run, Mode::kTexture); },
             false, true},
    Scenario{"device_removed", DeviceRemoved, false, true},
    Scenario{"device_lost", [](ScenarioRun& run) { DeviceLost(run, Mode::kLayers); }, false, true},
    Scenario{"device_lost_virtual", [](ScenarioRun& run) { DeviceLost(run, Mode::kTexture); }, false, true},
};

}  // namespace

std::span<const Scenario> GraphicsScenarios() { return kScenarios; }

}  // namespace bench::scenarios
