#include "simulation.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "base/clock.h"
#include "base/wait.h"
#include "sharing/device_group.h"
#include "sharing/sharing_device.h"

namespace bench {
namespace {

using namespace std::chrono_literals;

constexpr int kExitInitFailed = 2;
constexpr double kServerHertz = 90.0;
constexpr auto kFirstPoseTimeout = 10s;
// What is kept of a session that may run for hours.
constexpr std::size_t kKeptCalls = 10000;

void Intercept(DriverModule::Module module) {
  if (!InterceptModule(static_cast<HMODULE>(module))) {
    throw std::runtime_error("the driver does not import D3D11CreateDevice, so its textures cannot be shared here");
  }
}

}  // namespace

Simulation::Simulation(const SimulationOptions& options)
    : options_(options),
      driver_(FindDriver(options.driver)),
      runtime_(driver_.name),
      poseCsv_(options.posesCsv),
      frameCsv_(options.framesCsv),
      haptics_(options.haptics.empty() ? HapticScript() : HapticScript(options.haptics)),
      module_(driver_.library, Intercept),
      session_(runtime_, module_.Provider()) {
  LoadSettings();
  if (options_.keepDevices) {
    SetObserver(DeviceGroup::kIntercepted, &deviceKeeper_);
  }
  runtime_.Journal().LimitMemory(kKeptCalls);
  runtime_.Poses().LimitMemory(kKeptCalls);
  runtime_.Input().LimitMemory(kKeptCalls);
  runtime_.Resources().SetDriverFolder(driver_.root);
  if (!options_.record.empty()) {
    runtime_.Journal().RecordTo(options_.record);
  }
  if (!options_.quiet) {
    runtime_.Log().EchoToStandardOutput("driver: ");
  }
  runtime_.Poses().Listen([this](const PoseRecord& record) {
    if (record.device == kHead) {
      poseCsv_.Add(record);
    }
  });
}

Simulation::~Simulation() {
  SetObserver(DeviceGroup::kIntercepted, nullptr);
  if (!graphics_) {
    return;
  }
  // A run that failed halfway. A virtual display may hold the compositor in a frame until Cleanup.
  graphics_->RequestStop();
  if (!graphics_->WaitStopped(2s)) {
    graphics_->AbandonDriver();
    session_.Cleanup();
  }
}

void Simulation::LoadSettings() {
  if (!driver_.defaultSettings.empty()) {
    runtime_.Settings().LoadDefaults(driver_.defaultSettings);
  }
  if (!options_.settings.empty()) {
    runtime_.Settings().LoadOverrides(options_.settings);
  }
}

int Simulation::Run() {
  const vr::EVRInitError result = session_.Init();
  if (result != vr::VRInitError_None) {
    std::fprintf(stderr, "runtime: the driver's Init returned %d\n", static_cast<int>(result));
    session_.Cleanup();
    WriteDriverLog();
    return kExitInitFailed;
  }
  session_.StartFrames(kServerHertz);
  WaitForFirstPose();
  StartGraphics();
  Watch();
  Shutdown();
  return Conclude();
}

// Frames that nobody takes pile their layers up in the driver, and the first that is taken draws them all:
// a slow rasteriser would stand still for a second or two. So frames begin with the first pose after the activation's.
void Simulation::WaitForFirstPose() {
  std::printf("runtime: waiting for the first head pose\n");
  std::fflush(stdout);
  const std::size_t before = runtime_.Poses().Count(kHead);
  static_cast<void>(
      WaitUntil([&] { return stopRequested_ || runtime_.Poses().Count(kHead) > std::max<std::size_t>(before, 1); },
                kFirstPoseTimeout));
}

void Simulation::StartGraphics() {
  const auto headset = session_.Headset();
  if (!headset) {
    throw std::runtime_error("the driver has no headset");
  }
  headPosesAtStart_ = headPosesSeen_ = runtime_.Poses().Count(kHead);
  graphics_ =
      std::make_unique<GraphicsThread>(runtime_, session_, *headset, options_, [this](const FrameReport& report) {
        statistics_.Add(report);
        frameCsv_.Add(report);
      });
  modeName_ = graphics_->ModeName();
  const DisplayGeometry& geometry = graphics_->Geometry();
  std::printf("runtime: %s mode, %u x %u an eye, window %u x %u\n", modeName_.c_str(), geometry.renderWidth,
              geometry.renderHeight, geometry.windowWidth, geometry.windowHeight);
}

bool Simulation::Finished(double seconds) const {
  return stopRequested_ || (options_.seconds > 0.0 && seconds >= options_.seconds) ||
         (options_.frames > 0 && statistics_.Frames() >= options_.frames);
}

void Simulation::Watch() {
  const std::int64_t start = NowTicks();
  double nextLine = 1.0;
  const auto seconds = [start] { return TicksToSeconds(NowTicks() - start); };
  while (!Finished(seconds())) {
    haptics_.Advance(seconds(), runtime_, session_);
    if (graphics_->WaitStopped(10ms)) {  // it ends by itself only when it fails
      throw std::runtime_error("the compositor stopped: " + graphics_->Failure());
    }
    if (seconds() >= nextLine) {
      PrintLive(seconds());
      nextLine += 1.0;
    }
  }
  secondsRun_ = seconds();
}

void Simulation::PrintLive(double seconds) {
  const std::size_t poses = runtime_.Poses().Count(kHead);
  const FrameFigures recent = statistics_.TakeRecent();
  std::printf(
      "runtime: %6.1f s  poses %zu/s  frames %llu/s  pose age %.1f ms  dropped %llu  in all %llu frames, %llu "
      "dropped\n",
      seconds, poses - headPosesSeen_, static_cast<unsigned long long>(recent.frames), recent.poseAgeMedianMs,
      static_cast<unsigned long long>(recent.missedIntervals), static_cast<unsigned long long>(statistics_.Frames()),
      static_cast<unsigned long long>(statistics_.All().missedIntervals));
  std::fflush(stdout);
  headPosesSeen_ = poses;
}

}  // namespace bench
