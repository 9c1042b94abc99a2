#include "growth_control.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <string>

#include "base/wait.h"
#include "companion/tracking_update.h"
#include "frame_companion.h"

namespace bench::scenarios {

using namespace companion;

namespace {

constexpr std::chrono::milliseconds kPatience{kPatienceMs};

std::string PlayFrames(BareLink& link, FrameCompanion& companion, int count) {
  static float number = 0;
  return TakeFrames(companion, count, [&] {
    number = number < 1000 ? number + 1 : 1;
    link.Present(number);
    return number;
  });
}

bool OpenTextures(BareLink& link, FrameCompanion& companion) {
  const auto open = [&] {
    link.Present(0);
    return companion.TakeAnnouncement(10);
  };
  return WaitUntil(open, kPatience);
}

// The counterpart of CheckConnection.
void PlayConnection(ScenarioRun& run, BareLink& link, FrameCompanion& companion, BareParts parts, int frames = 3) {
  if (!run.Check(companion.Connect(), "control: the link connects to the companion")) return;
  if (parts == BareParts::kTextures) run.Check(OpenTextures(link, companion), "control: the textures are opened");
  if (parts == BareParts::kFrames) {
    const std::string fault = PlayFrames(link, companion, frames);
    run.Check(fault.empty(), "control: frames come: " + fault);
  }
  const Bytes pose = EncodeQuaternionAndPosition({}, {1, 2, 3});
  run.Check(companion.Pipes().Send(pose) && WaitUntil([&] { return link.BytesRead() == pose.size(); }, kPatience),
            "control: the link reads");
}

}  // namespace

Growth PlayBareConnections(ScenarioRun& run, BareParts parts, int rounds) {
  BareLink link(parts);
  Growth growth(rounds);
  auto companion = std::make_unique<FrameCompanion>();
  PlayConnection(run, link, *companion, parts, FramesToSettle(run));
  PlayRounds(run, growth, rounds, [&] {
    companion.reset();
    companion = std::make_unique<FrameCompanion>();
    PlayConnection(run, link, *companion, parts);
  });
  return growth;
}

Growth PlayBareLives(ScenarioRun& run, int rounds) {
  Growth growth(rounds);
  PlayRounds(run, growth, rounds, [&] {
    const HMODULE library = LoadLibraryA("empty_library.dll");
    run.Check(library != nullptr, "control: the library is beside the program");
    {
      BareLink link(BareParts::kFrames);
      FrameCompanion companion;
      PlayConnection(run, link, companion, BareParts::kFrames);
    }
    FreeLibrary(library);
  });
  return growth;
}

void JudgeBeside(ScenarioRun& run, const Growth& driver, const Growth& control, double marginBytes) {
  // Noise in the control's slope must not mask a leak.
  const double faster = driver.BytesPerRound() - std::min(control.BytesPerRound(), marginBytes);
  run.Figure("slope without the driver %.1f bytes a round", control.BytesPerRound());
  if (!run.isLong) return;
  run.Check(faster <= marginBytes, "memory grows no faster than without the driver, but does by " +
                                       std::to_string(static_cast<long long>(faster)) + " bytes a round; " +
                                       std::to_string(static_cast<long long>(marginBytes)) + " may be chance");
}

// Buffer renaming: each Map with WRITE_DISCARD, three for a layer, gets new storage, and Wine's Direct3D reuses old
// storage only once there are 16,384 pieces of it.
int FramesToSettle(const ScenarioRun& run) { return run.Rounds(6000, 3); }

}  // namespace bench::scenarios
