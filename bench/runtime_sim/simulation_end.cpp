// The end of a session: shutting the driver down, and the account of what happened.

#include <cstdio>
#include <stdexcept>

#include "base/clock.h"
#include "base/text_file.h"
#include "sharing/choice.h"
#include "simulation.h"

namespace bench {
namespace {

using namespace std::chrono_literals;

constexpr int kExitRequirement = 3;

}  // namespace

void Simulation::Shutdown() {
  const auto headset = session_.Headset();
  displayFrequency_ = static_cast<double>(
      runtime_.Properties().Get<float>(headset->container, vr::Prop_DisplayFrequency_Float).value_or(0.0F));
  for (const ActiveDevice& device : session_.Devices()) {
    devices_.push_back({{"serial", device.added.serial},
                        {"class", static_cast<int>(device.added.deviceClass)},
                        {"index", device.added.index},
                        {"poses", runtime_.Poses().Count(device.added.index)}});
  }
  graphics_->RequestStop();
  // A virtual display may hold its Present until a pose comes; its wait ends with Cleanup at the latest.
  const bool stopped = graphics_->WaitStopped(2s);
  if (stopped) {
    session_.Deactivate();
  } else {
    graphics_->AbandonDriver();
  }
  const std::int64_t start = NowTicks();
  session_.Cleanup();
  cleanupMs_ = TicksToMilliseconds(NowTicks() - start);
  if (!stopped && !graphics_->WaitStopped(5s)) {
    throw std::runtime_error("the driver keeps a frame after Cleanup");
  }
  graphics_.reset();
  module_.Unload();
}

int Simulation::Conclude() {
  WriteDriverLog();
  WriteSummary();
  const FrameFigures all = statistics_.All();
  const std::size_t poses = runtime_.Poses().Count(kHead) - headPosesAtStart_;
  std::printf(
      "runtime: %.1f s, %zu poses (%.1f/s), %llu frames (%.1f/s), %llu dropped, pose age %.2f ms (p99 %.2f), "
      "Present %.2f ms (p99 %.2f), Cleanup %.0f ms\n",
      secondsRun_, poses, static_cast<double>(poses) / secondsRun_, static_cast<unsigned long long>(all.frames),
      all.FramesPerSecond(), static_cast<unsigned long long>(all.missedIntervals), all.poseAgeMedianMs,
      all.poseAgeP99Ms, all.presentMedianMs, all.presentP99Ms, cleanupMs_);
  if (all.frames < options_.requireFrames) {
    std::fprintf(stderr, "runtime: fewer frames than required\n");
    return kExitRequirement;
  }
  return 0;
}

void Simulation::WriteSummary() {
  if (options_.summary.empty()) {
    return;
  }
  const FrameFigures all = statistics_.All();
  const std::size_t poses = runtime_.Poses().Count(kHead) - headPosesAtStart_;
  const nlohmann::ordered_json summary = {{"mode", modeName_},
                                          {"sharing", NameOf(SharingInUse())},
                                          {"seconds", secondsRun_},
                                          {"poses", poses},
                                          {"posesPerSecond", static_cast<double>(poses) / secondsRun_},
                                          {"frames", all.frames},
                                          {"framesPerSecond", all.FramesPerSecond()},
                                          {"framesPerSecondDue", options_.fps > 0.0 ? options_.fps : displayFrequency_},
                                          {"framesRequired", options_.requireFrames},
                                          {"droppedFrames", all.missedIntervals},
                                          {"poseAgeMedianMs", all.poseAgeMedianMs},
                                          {"poseAgeP99Ms", all.poseAgeP99Ms},
                                          {"presentMedianMs", all.presentMedianMs},
                                          {"presentP99Ms", all.presentP99Ms},
                                          {"displayFrequency", displayFrequency_},
                                          {"serverFrames", session_.Frames()},
                                          {"longestServerFrameMs", session_.LongestFrameMs()},
                                          {"vsyncEvents", runtime_.Host().VsyncEvents()},
                                          {"hapticsSent", haptics_.Sent()},
                                          {"cleanupMs", cleanupMs_},
                                          {"devices", devices_}};
  WriteText(options_.summary, summary.dump(2) + '\n');
}

void Simulation::WriteDriverLog() {
  if (options_.driverLog.empty()) {
    return;
  }
  std::string lines;
  for (const std::string& line : runtime_.Log().Lines()) {
    lines += line;
  }
  WriteText(options_.driverLog, lines);
}

}  // namespace bench
