// What would show only after hours: connections, messages, frames and whole lives, again and again.
#include <windows.h>

#include <array>
#include <memory>
#include <string>

#include "base/clock.h"
#include "base/wait.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "frame_companion.h"
#include "growth_control.h"
#include "resources.h"

namespace bench::scenarios {

using namespace companion;

namespace {

constexpr std::int64_t kMiB = 1024 * 1024;
using std::chrono::milliseconds;

// The short form has too few rounds for the rasterizer and the allocator to warm up.
std::int64_t AllowedWithTextures(const ScenarioRun& run) { return run.Rounds(12, 48) * kMiB; }

Growth PlayConnections(ScenarioRun& run, int rounds) {
  DriverLife life(run, Mode::kLayers, WatchHeap);
  life.Start();
  Growth growth(rounds);
  auto companion = std::make_unique<FrameCompanion>();  // connected at each sample
  CheckConnection(run, life, *companion, FramesToSettle(run));
  PlayRounds(run, growth, rounds, [&] {
    companion.reset();
    companion = std::make_unique<FrameCompanion>();
    CheckConnection(run, life, *companion);
  });
  return growth;
}

void Reconnects(ScenarioRun& run) {
  constexpr double kMarginBytes = 1024;
  const int rounds = run.Rounds(1000, 8);
  const Growth driver = PlayConnections(run, rounds);
  if (!run.Failures().empty()) return;
  const Growth control = PlayBareConnections(run, BareParts::kFrames, rounds);
  driver.Judge(run, AllowedWithTextures(run));
  JudgeBeside(run, driver, control, kMarginBytes);
}

// Which part of a connection costs the system memory.
void Control(ScenarioRun& run) {
  const int rounds = run.Rounds(200, 4);
  const auto slope = [&](BareParts parts) { return PlayBareConnections(run, parts, rounds).BytesPerRound(); };
  const double pipes = slope(BareParts::kPipes), textures = slope(BareParts::kTextures);
  run.Figure("without the driver, bytes a connection: pipes alone %.1f, with textures %.1f, with frames %.1f", pipes,
             textures, slope(BareParts::kFrames));
}

// Messages of each kind that leaves no lasting state.
Bytes MessageBlock(float x) {
  Bytes block;
  const auto add = [&](const Bytes& message) { block.insert(block.end(), message.begin(), message.end()); };
  for (int i = 0; i < 12; ++i) add(EncodeQuaternionAndPosition({}, {x, 1, 0}));
  add(EncodeSensors({}));
  add(EncodeEulerAngles(0, 0, 0, {x, 1, 0}));
  add(EncodeRecenterRequest());
  for (std::uint32_t id = 1; id <= 4; ++id) add(EncodeControllerUpdate({.controllerId = id}));
  add(EncodeMessage(3, Bytes(100)));
  return block;
}

void Messages(ScenarioRun& run) {
  constexpr int kInBlock = 20;
  constexpr int kBlocksInRound = 50;
  DriverLife life(run, Mode::kLayers, WatchHeap);
  life.Start();
  FrameCompanion companion;
  if (!CheckConnection(run, life, companion)) return;
  const int rounds = run.Rounds(1'000'000, 20'000) / kInBlock / kBlocksInRound;
  Growth growth(rounds);
  float x = 0;
  const std::int64_t begin = NowTicks();
  for (int round = 1; round <= rounds && run.Failures().empty(); ++round) {
    for (int block = 0; block < kBlocksInRound; ++block) {
      run.Check(companion.Pipes().Send(MessageBlock(x)), "the driver reads");
    }
    run.Check(PoseArrives(life, companion.Pipes(), ++x), "all messages have been taken in");
    life.ActivatePending();
    life.RunFrame();
    growth.Sample(round);
  }
  const double seconds = TicksToSeconds(NowTicks() - begin);
  run.Figure("%.0f messages a second", rounds * kInBlock * kBlocksInRound / seconds);
  growth.Judge(run, 2 * kMiB);
}

void Frames(ScenarioRun& run) {
  constexpr int kFramesInRound = 5;
  // Wine's Direct3D takes memory for buffers in chunks. Some minutes may need a second one; a leak of ours would creep.
  constexpr std::int64_t kBufferChunk = 64 * kMiB;
  constexpr double kMostCreepBytes = 16;
  DriverLife life(run, Mode::kLayers, WatchHeap);
  life.Start();
  FrameCompanion companion;
  if (!CheckConnection(run, life, companion)) return;
  const int rounds = run.Rounds(100'000, 60) / kFramesInRound;
  Growth growth(rounds);
  const std::int64_t begin = NowTicks();
  int frames = 0;
  PlayRounds(run, growth, rounds, [&] {
    CheckFrames(run, life, companion, kFramesInRound);
    frames += kFramesInRound;
  });
  const double seconds = TicksToSeconds(NowTicks() - begin);
  run.Figure("%d frames, %.0f a second", frames, frames / seconds);
  growth.Judge(run, 2 * kMiB + (run.isLong ? kBufferChunk : 0));
  if (run.isLong) run.Check(growth.BytesPerRound() <= kMostCreepBytes, "memory does not creep");
}

// Direct3D ends its threads in its own time, and one of the system's own may come late: see Growth::Judge.
void CheckAsBefore(ScenarioRun& run, const Held& before) {
  Held now;
  const bool isAsBefore = WaitUntil(
      [&] {
        now = ReadHeld();
        return now.threads <= before.threads + 1 && now.handles <= before.handles + 2 && now.graphics == 0;
      },
      milliseconds(kPatienceMs));
  run.Check(isAsBefore, "back to where it was: threads " + std::to_string(now.threads) + ", handles " +
                            std::to_string(now.handles) + ", Direct3D objects " + std::to_string(now.graphics));
}

// What a library that is only loaded and unloaded frees more than it allocates: its first blocks come before any watch.
std::int64_t BlocksOfLoading(ScenarioRun& run) {
  const std::int64_t before = ReadHeld().driverBlocks;
  { const DriverLife unused(run, Mode::kLayers, WatchHeap); }
  return ReadHeld().driverBlocks - before;
}

// The library comes and goes in one process, each time with a whole session.
void LoadCycles(ScenarioRun& run) {
  constexpr int kModes = 2;
  constexpr double kMarginBytes = 32 * 1024;  // devices come and go
  const int rounds = run.Rounds(200, 5);
  const std::int64_t ofLoading = BlocksOfLoading(run);
  const std::int64_t blocksBefore = ReadHeld().driverBlocks;
  Growth growth(rounds);
  Held first;
  for (int round = 1; round <= rounds && run.Failures().empty(); ++round) {
    {
      DriverLife life(run, round % 2 == 0 ? Mode::kTexture : Mode::kLayers, WatchHeap);
      life.Start();
      FrameCompanion companion;
      CheckConnection(run, life, companion);
    }
    run.Check(GetModuleHandleA("driver_ombrel.dll") == nullptr, "the library has gone");
    // What the stand-ins keep is there after a round in each mode.
    if (round == kModes) first = ReadHeld();
    if (round > kModes) CheckAsBefore(run, first);
    growth.Sample(round);
  }
  growth.Judge(run, AllowedWithTextures(run));
  if (!run.Failures().empty()) return;
  JudgeBeside(run, growth, PlayBareLives(run, rounds), kMarginBytes);
  const std::int64_t left = ReadHeld().driverBlocks - blocksBefore - rounds * ofLoading;
  run.Figure("%lld blocks of the driver left in all", static_cast<long long>(left));
  run.Check(left == 0, "a life leaves no block of the driver behind");
}

constexpr std::array kScenarios{
    Scenario{"growth_reconnects", Reconnects}, Scenario{"growth_control", Control},
    Scenario{"growth_messages", Messages},     Scenario{"growth_frames", Frames},
    Scenario{"load_cycles", LoadCycles},
};

}  // namespace

std::span<const Scenario> GrowthScenarios() { return kScenarios; }

}  // namespace bench::scenarios
