// Absurd frame rates (0, 1, the sign bit, all bits): no wait exceeds its bound.
#include <windows.h>

#include <array>
#include <future>
#include <stdexcept>
#include <string>

#include "base/clock.h"
#include "base/wait.h"
#include "companion/messages.h"
#include "frame_companion.h"
#include "runtime/keyed_texture.h"

namespace bench::scenarios {

using namespace companion;

namespace {

using std::chrono::milliseconds;

constexpr std::array<std::uint32_t, 4> kRates{0, 1, 0x80000000U, 0xFFFFFFFFU};

template <typename Body>
double TimeMs(Body body) {
  const std::int64_t begin = NowTicks();
  body();
  return TicksToMilliseconds(NowTicks() - begin);
}

// The texture that the driver is to take next, held from its companion's side.
class HeldOutputs {
 public:
  explicit HeldOutputs(const FrameSharingInfo& info) {
    for (std::size_t i = 0; i < textures_.size(); ++i) {
      textures_[i] = OpenTexture(*CompanionDevice().Get(), info.sharedHandles[i]);
      if (!textures_[i]) throw std::runtime_error("an output that cannot be opened");
      RequireOk(textures_[i].As(&mutexes_[i]), "finding its mutex");
    }
  }
  // Takes what the driver does not hold: it then waits at its next frame.
  void TakeFree() {
    for (bool any = false; !any;) {
      for (std::size_t i = 0; i < mutexes_.size(); ++i) {
        isHeld_[i] = mutexes_[i]->AcquireSync(0, 1) == S_OK;
        any = any || isHeld_[i];
      }
    }
  }
  ~HeldOutputs() {
    for (std::size_t i = 0; i < mutexes_.size(); ++i) {
      if (isHeld_[i]) mutexes_[i]->ReleaseSync(0);
    }
  }
  HeldOutputs(const HeldOutputs&) = delete;
  HeldOutputs& operator=(const HeldOutputs&) = delete;

 private:
  std::array<Microsoft::WRL::ComPtr<ID3D11Texture2D>, 2> textures_;
  std::array<Microsoft::WRL::ComPtr<IDXGIKeyedMutex>, 2> mutexes_;
  std::array<bool, 2> isHeld_{};
};

void PlayAtRate(ScenarioRun& run, DriverLife& life, FrameCompanion& companion, std::uint32_t rate) {
  static float x = 0;
  static KeyedTexture runtimes(*RuntimeDevice().Get(), 1000, 600, DXGI_FORMAT_R8G8B8A8_UNORM);
  run.Check(companion.Pipes().Send(EncodeFramerateUpdate(rate)) && PoseArrives(life, companion.Pipes(), ++x),
            "the driver takes the rate");
  auto waits = std::async(std::launch::async, [&] {
    life.WaitForNext();
    return TimeMs([&] { life.WaitForNext(); });
  });
  double outputMs = 0;
  {
    HeldOutputs outputs(companion.Announced());
    outputs.TakeFree();
    const PoseStream poses(companion.Pipes());
    outputMs = TimeMs([&] { life.Present(life.HasLayers() ? 0 : runtimes.Handle()); });
  }
  double runtimesMs = 0;
  if (runtimes.Acquire(milliseconds(1000))) {
    const PoseStream poses(companion.Pipes());
    runtimesMs = TimeMs([&] { life.Present(runtimes.Handle()); });
    runtimes.Release();
  }
  run.Figure("at %u: Present held by the companion %.0f ms, by the runtime %.0f ms, pacing %.0f ms", rate, outputMs,
             runtimesMs, waits.get());
}

void FrameRates(ScenarioRun& run, Mode mode) {
  DriverLife life(run, mode);
  life.Start();
  FrameCompanion companion;
  if (!CheckConnection(run, life, companion)) return;
  for (const std::uint32_t rate : kRates) {
    if (!run.isLong && rate == (mode == Mode::kTexture ? 0 : 1)) {
      run.Skip(std::to_string(rate) + " frames a second: in the long form, since both modes wait by the same rules");
      continue;
    }
    PlayAtRate(run, life, companion, rate);
  }
  run.Check(companion.Pipes().Send(EncodeFramerateUpdate(60)), "the link is up");
  CheckFrames(run, life, companion, 3);
}

constexpr std::array kScenarios{
    Scenario{"frame_rates", [](ScenarioRun& run) { FrameRates(run, Mode::kLayers); }},
    Scenario{"frame_rates_virtual", [](ScenarioRun& run) { FrameRates(run, Mode::kTexture); }},
};

}  // namespace

std::span<const Scenario> RateScenarios() { return kScenarios; }

}  // namespace bench::scenarios
