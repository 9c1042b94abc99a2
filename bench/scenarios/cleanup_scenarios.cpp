// Cleanup while something is under way, and FreeLibrary right after it.
#include <windows.h>

#include <array>
#include <atomic>
#include <future>
#include <thread>

#include "base/clock.h"
#include "base/wait.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "failing_calls.h"
#include "frame_companion.h"
#include "runtime/keyed_texture.h"
#include "silent_pipes.h"

namespace bench::scenarios {

using namespace companion;

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{kPatienceMs};

// Cleanup and FreeLibrary while `call` is inside the driver on another thread; it has to be out when Cleanup returns.
void EndDuring(ScenarioRun& run, DriverLife& life, std::future<void>& call) {
  const bool wasInside = call.wait_for(milliseconds(50)) == std::future_status::timeout;
  run.Check(wasInside, "the call waits when Cleanup begins");
  const std::int64_t begin = NowTicks();
  life.Cleanup();
  const double ms = TicksToMilliseconds(NowTicks() - begin);
  run.Check(call.wait_for(milliseconds(0)) == std::future_status::ready, "the call is out when Cleanup returns");
  call.wait();
  life.Unload();
  run.Check(GetModuleHandleA("driver_ombrel.dll") == nullptr, "the library goes at once");
  run.Figure("Cleanup %.0f ms", ms);
}

// At one frame a second.
void StartSlowly(ScenarioRun& run, DriverLife& life, FrameCompanion& companion) {
  life.Start();
  CheckConnection(run, life, companion);
  run.Check(companion.Pipes().Send(EncodeFramerateUpdate(1)) && PoseArrives(life, companion.Pipes(), 9),
            "the driver takes the rate");
}

void DuringHandOff(ScenarioRun& run, Mode mode) {
  KeyedTexture texture(*RuntimeDevice().Get(), 1000, 600, DXGI_FORMAT_R8G8B8A8_UNORM);
  DriverLife life(run, mode);
  FrameCompanion companion;
  StartSlowly(run, life, companion);
  run.Check(texture.Acquire(milliseconds(100)), "the runtime keeps its texture");
  auto present = std::async(std::launch::async, [&] { life.Present(texture.Handle()); });
  EndDuring(run, life, present);
  texture.Release();
}

// A finished texture waits for a pose that does not come.
void DuringWaitForPose(ScenarioRun& run) {
  KeyedTexture texture(*RuntimeDevice().Get(), 1000, 600, DXGI_FORMAT_R8G8B8A8_UNORM);
  DriverLife life(run, Mode::kTexture);
  life.Start();
  FrameCompanion companion;
  run.Check(companion.Connect(), "the driver connects");
  std::atomic<bool> isAnnounced = false;
  auto present = std::async(std::launch::async, [&] {
    for (life.Present(texture.Handle()); !isAnnounced; life.Present(texture.Handle())) Sleep(1);
  });
  run.Check(companion.TakeAnnouncement(kPatienceMs), "the driver takes a frame");
  isAnnounced = true;
  EndDuring(run, life, present);
}

void DuringPacing(ScenarioRun& run) {
  DriverLife life(run);
  FrameCompanion companion;
  StartSlowly(run, life, companion);
  life.WaitForNext();
  auto wait = std::async(std::launch::async, [&] { life.WaitForNext(); });
  EndDuring(run, life, wait);
}

// Delays each CreateTexture2D, so that Cleanup meets the set-up of a connection half done.
class SlowTextures : public DeviceObserver {
 public:
  void OnCreateTexture2D(const D3D11_TEXTURE2D_DESC&) override {
    if (!isSlow) return;
    entered = true;
    Sleep(300);
  }
  std::atomic<bool> isSlow = false;
  std::atomic<bool> entered = false;
};

void DuringSetUp(ScenarioRun& run) {
  Watching<SlowTextures> textures;
  DriverLife life(run);
  life.Start();
  FrameCompanion companion;
  textures.isSlow = true;
  run.Check(companion.Connect(), "the driver connects");
  run.Check(WaitUntil([&] { return textures.entered.load(); }, kPatience), "textures are made");
  life.Cleanup();
  life.Unload();
}

void BetweenPipes(ScenarioRun& run) {
  DriverLife life(run);
  life.Start();
  SilentPipes pipes(SilentPipes::Which::kOnlyFromDriver);
  run.Check(pipes.WaitForDriver(kPatienceMs), "the driver opens the first pipe");
  life.Cleanup();
  life.Unload();
}

// The companion neither writes nor goes, so that nothing but the driver ends its read.
void DuringRead(ScenarioRun& run) {
  DriverLife life(run);
  life.Start();
  SilentPipes pipes;
  run.Check(pipes.WaitForDriver(kPatienceMs), "the driver connects");
  run.Check(pipes.Write(EncodeQuaternionAndPosition({}, {4, 0, 0})), "the driver reads");
  run.Check(WaitUntil([&] { return life.Pose().vecPosition[0] == 4.0; }, kPatience), "a pose arrives");
  life.Cleanup();
  life.Unload();
}

// The runtime takes its time over a pose, on the reader thread.
void DuringDispatch(ScenarioRun& run) {
  std::atomic<bool> isSlow = false, inside = false;
  DriverLife life(run);
  life.runtime.Poses().Listen([&](const PoseRecord&) {
    if (!isSlow) return;
    inside = true;
    Sleep(300);
    inside = false;
  });
  life.Start();
  FrameCompanion companion;
  CheckConnection(run, life, companion);
  isSlow = true;
  run.Check(companion.Pipes().Send(EncodeQuaternionAndPosition({}, {})), "the link is up");
  run.Check(WaitUntil([&] { return inside.load(); }, kPatience), "the runtime has the pose in hand");
  life.Cleanup();
  run.Check(!inside, "the reader is out when Cleanup returns");
  life.Unload();
}

// Any time within the first half second of a companion.
void AtAnyTime(ScenarioRun& run) {
  const int rounds = run.Rounds(60, 3);
  for (int round = 0; round < rounds && run.Failures().empty(); ++round) {
    DriverLife life(run, round % 2 == 0 ? Mode::kLayers : Mode::kTexture);
    life.Start();
    PipeServer pipes;
    run.Check(pipes.Open(), "the pipes can be made");
    const PoseStream poses(pipes);
    std::this_thread::sleep_for(milliseconds(500 * round / rounds));
    life.Cleanup();
    life.Unload();
  }
  run.Figure("%d times", rounds);
}

// FreeLibrary without Cleanup: the module has to stay loaded while the link's threads run, or they would execute
// unmapped code.
void ForgottenCleanup(ScenarioRun& run) {
  DriverLife life(run);
  life.Start();
  life.UnloadWithoutCleanup();
  const bool stays = GetModuleHandleA("driver_ombrel.dll") != nullptr;
  run.Check(stays, "the library stays as long as its threads run");
  if (!stays) return life.Unload();
  FrameCompanion companion;
  run.Check(companion.Connect(), "the link's threads go on and connect");
  run.Check(PoseArrives(life, companion.Pipes(), 5), "a pose arrives");
  run.Figure("a companion is connected and heard after FreeLibrary");
  HMODULE held = nullptr;  // a reference of our own, so that Cleanup's own code stays mapped until it returns
  GetModuleHandleExA(0, "driver_ombrel.dll", &held);
  life.Cleanup();
  life.Unload();
  FreeLibrary(held);
  run.Check(GetModuleHandleA("driver_ombrel.dll") == nullptr, "the library goes after a late Cleanup");
}

constexpr std::array kScenarios{
    Scenario{"cleanup_during_hand_off", [](ScenarioRun& run) { DuringHandOff(run, Mode::kLayers); }},
    Scenario{"cleanup_during_hand_off_virtual", [](ScenarioRun& run) { DuringHandOff(run, Mode::kTexture); }},
    Scenario{"cleanup_during_wait_for_pose", DuringWaitForPose},
    Scenario{"cleanup_during_pacing", DuringPacing},
    Scenario{"cleanup_during_set_up", DuringSetUp, false, true},
    Scenario{"cleanup_between_pipes", BetweenPipes},
    Scenario{"cleanup_during_read", DuringRead},
    Scenario{"cleanup_during_dispatch", DuringDispatch},
    Scenario{"cleanup_at_any_time", AtAnyTime},
    Scenario{"cleanup_forgotten", ForgottenCleanup},
};

}  // namespace

std::span<const Scenario> CleanupScenarios() { return kScenarios; }

}  // namespace bench::scenarios
