// Activation late, twice and never; and every call at once.
#include <windows.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "base/wait.h"
#include "companion/tracking_update.h"
#include "frame_companion.h"
#include "runtime/msvc_calls.h"

namespace bench::scenarios {
namespace {

using std::chrono::milliseconds;

// Layers pile up while there is nobody to draw them for, so that only the first frames have any.
void PlayAlong(DriverLife& life, int frames) {
  for (int frame = 0; frame < frames; ++frame) {
    if (frame < 20) life.SubmitLayer(0, 1);
    life.Present();
    life.WaitForNext();
    life.RunFrame();
  }
}

// A companion that is there, and speaks, while the headset is not activated.
void PlayInactive(ScenarioRun& run, DriverLife& life, FrameCompanion& companion) {
  life.Init();
  run.Check(companion.Connect(), "the driver connects");
  const PoseStream poses(companion.Pipes());
  PlayAlong(life, run.Rounds(600, 20));
}

void ActivationLate(ScenarioRun& run) {
  DriverLife life(run);
  FrameCompanion companion;
  PlayInactive(run, life, companion);
  companion.Pipes().Flush();
  run.Check(!companion.TakeAnnouncement(0), "no frame comes before the activation");
  life.ActivatePending();
  CheckFrames(run, life, companion, 3);
  run.Check(PoseArrives(life, companion.Pipes(), 5), "poses arrive");
}

void ActivationTwice(ScenarioRun& run) {
  DriverLife life(run);
  life.Start();
  FrameCompanion companion;
  CheckConnection(run, life, companion);
  for (int again = 0; again < 3; ++again) {
    run.calls.Timed("Activate", [&] { return life.Headset().Activate(0); });
    CheckFrames(run, life, companion, 3);
  }
  run.Check(PoseArrives(life, companion.Pipes(), 5), "poses arrive");
}

void ActivationNever(ScenarioRun& run) {
  DriverLife life(run);
  {
    FrameCompanion companion;
    PlayInactive(run, life, companion);
    run.Check(WaitUntil([&] { return life.Pose().poseIsValid; }, milliseconds(kPatienceMs)), "the headset has a pose");
    run.Check(life.runtime.Poses().Count() == 0, "the runtime gets no pose of a headset that it has not activated");
  }
  PlayAlong(life, 5);
}

void CallTheHeadset(CallWatch& calls, DriverLife& life) {
  vr::ITrackedDeviceServerDriver& headset = life.Headset();
  auto& display = *static_cast<vr::IVRDisplayComponent*>(life.Component(vr::IVRDisplayComponent_Version));
  char answer[16];
  std::int32_t x = 0, y = 0;
  std::uint32_t width = 0, height = 0;
  calls.Timed("DebugRequest", [&] { headset.DebugRequest("?", answer, sizeof(answer)); });
  calls.Timed("EnterStandby", [&] { headset.EnterStandby(); });
  calls.Timed("GetWindowBounds", [&] { display.GetWindowBounds(&x, &y, &width, &height); });
  static_cast<void>(
      calls.Timed("ComputeDistortion", [&] { return CallComputeDistortion(&display, vr::Eye_Left, 0.5F, 0.5F); }));
  static_cast<void>(life.Pose());
}

void CallTheDirectMode(CallWatch& calls, DriverLife& life) {
  auto& direct =
      *static_cast<vr::IVRDriverDirectModeComponent*>(life.Component(vr::IVRDriverDirectModeComponent_Version));
  auto set = life.CreateSwapSet(2);
  std::uint32_t indices[2]{};
  vr::DriverDirectMode_FrameTiming timing{};
  timing.m_nSize = sizeof(timing);
  calls.Timed("GetNextSwapTextureSetIndex", [&] { direct.GetNextSwapTextureSetIndex(set.data(), &indices); });
  calls.Timed("GetFrameTiming", [&] { direct.GetFrameTiming(&timing); });
  life.DestroySwapSet(set[0]);
  calls.Timed("DestroyAllSwapTextureSets", [&] { direct.DestroyAllSwapTextureSets(2); });
}

// All that the runtime may call, while frames are presented, poses stream in and companions come and go.
void EveryCall(ScenarioRun& run) {
  DriverLife life(run);
  life.Start();
  std::atomic<bool> stop = false;
  std::thread compositor([&] {
    while (!stop) {
      life.SubmitLayer(0, 1);
      life.Present();
      life.WaitForNext();
    }
  });
  std::thread server([&] {
    while (!stop) {
      life.RunFrame();
      life.ActivatePending();
      std::this_thread::sleep_for(milliseconds(5));
    }
  });
  int rounds = 0;
  for (int companions = run.Rounds(60, 2); companions > 0; --companions) {
    FrameCompanion companion;
    if (!run.Check(companion.Connect(), "the driver connects")) break;
    const PoseStream poses(companion.Pipes());
    const auto end = std::chrono::steady_clock::now() + milliseconds(200);
    for (; std::chrono::steady_clock::now() < end; ++rounds) {
      CallTheHeadset(run.calls, life);
      CallTheDirectMode(run.calls, life);
    }
    run.calls.Timed("Deactivate", [&] { life.Headset().Deactivate(); });
    run.calls.Timed("Activate", [&] { return life.Headset().Activate(0); });
  }
  stop = true;
  compositor.join();
  server.join();
  run.Figure("%d rounds of all calls beside frames", rounds);
  CheckNewCompanion(run, life);
}

void EveryCallVirtual(ScenarioRun& run) {
  DriverLife life(run, Mode::kTexture);
  life.Start();
  auto& display = *static_cast<vr::IVRVirtualDisplay*>(life.Component(vr::IVRVirtualDisplay_Version));
  FrameCompanion companion;
  CheckConnection(run, life, companion);
  for (int more = run.Rounds(25, 1); more > 0 && run.Failures().empty(); --more) {
    CheckFrames(run, life, companion, run.Rounds(20, 5));
  }
  for (int frame = 0; frame < 20; ++frame) {
    float seconds = 0;
    std::uint64_t counter = 0;
    run.calls.Timed("GetTimeSinceLastVsync", [&] { return display.GetTimeSinceLastVsync(&seconds, &counter); });
    life.WaitForNext();
    CallTheHeadset(run.calls, life);
  }
}

constexpr std::array kScenarios{
    Scenario{"activation_late", ActivationLate},      Scenario{"activation_twice", ActivationTwice},
    Scenario{"activation_never", ActivationNever},    Scenario{"every_call", EveryCall},
    Scenario{"every_call_virtual", EveryCallVirtual},
};

}  // namespace

std::span<const Scenario> ActivationScenarios() { return kScenarios; }

}  // namespace bench::scenarios
