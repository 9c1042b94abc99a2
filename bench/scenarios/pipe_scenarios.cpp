// Companions that do not speak, speak nonsense, or come and go.
#include <windows.h>

#include <array>
#include <atomic>
#include <future>
#include <random>
#include <thread>

#include "base/clock.h"
#include "base/wait.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "frame_companion.h"
#include "silent_pipes.h"

namespace bench::scenarios {

using namespace companion;

namespace {

using std::chrono::milliseconds;
using Which = SilentPipes::Which;

constexpr milliseconds kPatience{kPatienceMs};
constexpr std::uint32_t kControllerId = 7;
// Scheduling on a busy machine keeps a call that does not block for less.
constexpr double kNobodyWaitsMs = 400;

// The runtime's frames for about that long.
void PlayFor(DriverLife& life, milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (std::chrono::steady_clock::now() < end) {
    life.Present();
    life.WaitForNext();
    life.RunFrame();
    life.ActivatePending();
  }
}

void SilentCompanion(ScenarioRun& run) {
  DriverLife& life = DriverLife::Shared(run);
  {
    SilentPipes pipes;
    run.Check(pipes.WaitForDriver(kPatienceMs), "the driver opens both pipes");
    PlayFor(life, milliseconds(run.Rounds(20'000, 300)));
  }
  CheckNewCompanion(run, life);
}

void OnePipe(ScenarioRun& run, Which which) {
  DriverLife& life = DriverLife::Shared(run);
  {
    SilentPipes pipes(which);
    if (which == Which::kOnlyFromDriver) run.Check(pipes.WaitForDriver(kPatienceMs), "the driver opens the pipe");
    PlayFor(life, milliseconds(run.Rounds(20'000, 300)));
    if (which == Which::kOnlyToDriver) run.Check(!pipes.WaitForDriver(0), "the driver leaves the second pipe alone");
  }
  CheckNewCompanion(run, life);
}

void SecondPipeLate(ScenarioRun& run) {
  DriverLife& life = DriverLife::Shared(run);
  for (const int delayMs : {1, 149, 151, 260, run.Rounds(10'000, 600)}) {
    const std::int64_t begin = NowTicks();
    auto connected = std::async(std::launch::async, [delayMs] {
      SilentPipes fromDriver(Which::kOnlyFromDriver);
      std::this_thread::sleep_for(milliseconds(delayMs));
      SilentPipes toDriver(Which::kOnlyToDriver);
      return fromDriver.WaitForDriver(kPatienceMs) && toDriver.WaitForDriver(kPatienceMs);
    });
    while (connected.wait_for(milliseconds(0)) != std::future_status::ready) PlayFor(life, milliseconds(10));
    run.Check(connected.get(), "the driver connects");
    run.Figure("%d ms late: connected after %.0f ms", delayMs, TicksToMilliseconds(NowTicks() - begin));
  }
  CheckNewCompanion(run, life);
}

// Companions with random lifetimes, so that each step of connecting is interrupted now and then.
void Restarts(ScenarioRun& run) {
  DriverLife& life = DriverLife::Shared(run);
  std::mt19937 random(18);
  std::uniform_int_distribution<int> lifetimeMs(0, 600);
  const int rounds = run.Rounds(1000, 6);
  int connected = 0;
  for (int round = 0; round < rounds; ++round) {
    PipeServer pipes;
    if (!run.Check(WaitUntil([&] { return pipes.Open(); }, kPatience), "the pipes can be made again")) return;
    PlayFor(life, milliseconds(lifetimeMs(random)));
    if (pipes.Connected()) ++connected;
  }
  run.Figure("%d companions of 0 to 600 ms, %d of them met", rounds, connected);
  CheckNewCompanion(run, life);
}

Bytes RandomBytes(std::mt19937& random, std::size_t count) {
  Bytes bytes(count);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

// A message of a type that the driver takes, or of another, with random contents.
Bytes RandomMessage(std::mt19937& random) {
  constexpr std::array<std::uint32_t, 8> kTypes{2, 3, 4, 8, 9, 10, 11, 0xFFFFFFFF};
  const std::uint32_t type = kTypes[random() % kTypes.size()];
  // A random id would make a controller each time, of which a runtime takes 63.
  if (type == 10) return EncodeControllerUpdate({.controllerId = random() % 4});
  return EncodeMessage(type, RandomBytes(random, random() % 300));
}

Bytes Garbage(std::mt19937& random, int round) {
  switch (round % 4) {
    case 0:
      return RandomBytes(random, 4096);
    case 1:
      return Bytes(4096, 0xFF);  // the longest length there is
    case 2:
      return EncodeMessage(MessageType::TrackingUpdate, RandomBytes(random, 65'536 + 1));
    default:
      break;
  }
  Bytes many;
  for (int message = 0; message < 300; ++message) {
    const Bytes one = RandomMessage(random);
    many.insert(many.end(), one.begin(), one.end());
  }
  return many;
}

void GarbageScenario(ScenarioRun& run) {
  DriverLife life(run);
  life.Start();
  std::mt19937 random(18);
  const int rounds = run.Rounds(400, 4);
  int taken = 0;
  for (int round = 0; round < rounds; ++round) {
    SilentPipes pipes;
    if (!run.Check(pipes.WaitForDriver(kPatienceMs), "the driver connects again")) return;
    if (pipes.Write(Garbage(random, round))) ++taken;
    PlayFor(life, milliseconds(20));
  }
  run.Figure("%d companions with garbage, %d of them read to the end", rounds, taken);
  CheckNewCompanion(run, life);
}

// A zero-byte write completes a read with 0 bytes, which is not the end of the pipe: a reader that retries without
// looking at anything else could not be stopped.
void EmptyWrites(ScenarioRun& run) {
  std::atomic<bool> stop = false;
  std::atomic<int> writes = 0;
  DriverLife life(run);
  life.Start();
  SilentPipes pipes(Which::kBoth, 65536, true);
  run.Check(pipes.WaitForDriver(kPatienceMs), "the driver connects");
  std::thread writer([&] {
    while (!stop) {
      if (pipes.Write({}, 100)) ++writes;
    }
  });
  PlayFor(life, milliseconds(500));
  const std::int64_t begin = NowTicks();
  life.Cleanup();
  run.Figure("Cleanup after %.0f ms, with %d empty writes taken", TicksToMilliseconds(NowTicks() - begin),
             writes.load());
  run.Check(writes > 0, "empty writes are taken");
  stop = true;
  writer.join();
}

// Many pulses at once, and a companion that takes none.
void NotReading(ScenarioRun& run) {
  DriverLife& life = DriverLife::Shared(run);
  {
    SilentPipes pipes(Which::kBoth, 0);
    run.Check(pipes.WaitForDriver(kPatienceMs), "the driver connects");
    run.Check(pipes.Write(EncodeControllerUpdate({.controllerId = kControllerId})), "the driver reads");
    const auto known = [&] { return life.Controller(kControllerId).has_value(); };
    run.Check(WaitUntil(known, kPatience), "a controller is there");
    life.ActivatePending();
    const auto container = FakeProperties::ContainerOf(life.Controller(kControllerId)->index);
    for (int pulse = 0; pulse < 20; ++pulse) life.runtime.Host().PushHaptic(container, 1, 0.01F, 100, 1);
    auto presents = std::async(std::launch::async, [&] {
      for (int frame = 0; frame < 3; ++frame) life.Present();
    });
    const std::int64_t begin = NowTicks();
    life.RunFrame();
    const double ms = TicksToMilliseconds(NowTicks() - begin);
    run.Figure("RunFrame with 20 pulses %.0f ms", ms);
    run.Check(ms < kNobodyWaitsMs, "RunFrame does not wait for the companion");
    run.Check(life.runtime.Host().QueuedEvents() == 0, "RunFrame takes all events");
    presents.get();
    run.Check(pipes.Write(EncodeQuaternionAndPosition({}, {3, 0, 0})), "the driver still reads");
    run.Check(WaitUntil([&] { return life.Pose().vecPosition[0] == 3.0; }, kPatience), "poses still arrive");
  }
  CheckNewCompanion(run, life);
}

// A runtime that shows frames for a long time before anybody looks.
void PiledLayers(ScenarioRun& run) {
  DriverLife life(run);
  life.Start();
  const DriverLife::SwapSet set = life.CreateSwapSet();
  const int frames = run.Rounds(200'000, 2'000);
  for (int frame = 0; frame < frames; ++frame) {
    life.SubmitLayer(set[static_cast<std::size_t>(frame) % set.size()], static_cast<float>(frame));
    life.Present();
  }
  run.Figure("%d frames before the companion", frames);
  CheckNewCompanion(run, life);
}

constexpr std::array kScenarios{
    Scenario{"silent_companion", SilentCompanion, true},
    Scenario{"only_first_pipe", [](ScenarioRun& run) { OnePipe(run, Which::kOnlyFromDriver); }, true},
    Scenario{"only_second_pipe", [](ScenarioRun& run) { OnePipe(run, Which::kOnlyToDriver); }, true},
    Scenario{"second_pipe_late", SecondPipeLate, true},
    Scenario{"restarts", Restarts, true},
    Scenario{"not_reading", NotReading, true},
    Scenario{"garbage", GarbageScenario},
    Scenario{"empty_writes", EmptyWrites},
    Scenario{"piled_layers", PiledLayers},
};

}  // namespace

std::span<const Scenario> PipeScenarios() { return kScenarios; }

}  // namespace bench::scenarios
