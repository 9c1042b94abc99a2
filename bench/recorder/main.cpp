// A session of the stand-in runtime with the driver that records what passes between driver and companion. The companion
// runs already, or is started from here.
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <windows.h>

#include <ombrel/protocol.h>
#include <CLI/CLI.hpp>

#include "base/child_process.h"
#include "base/wait.h"
#include "companion_watch.h"
#include "mutex_recorder.h"
#include "recorder/pipe_recorder.h"
#include "sharing/question.h"
#include "sharing/sharing_option.h"
#include "simulation.h"
#include "tried_companion.h"

namespace {

using namespace std::chrono_literals;
using checker::EventKind;

constexpr int kNotTried = 2, kNoCompanion = 4;
// After the driver has gone, to let go of the block.
constexpr auto kBlockPatience = 2s;

struct Options {
  bench::SimulationOptions simulation;
  std::filesystem::path recording;
  std::filesystem::path monitor;
  double waitSeconds = 15;
  std::vector<std::string> command;  // the companion and its arguments; empty: it runs already
  std::filesystem::path companionLog;
};

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
  CLI::App app(
      "Plays a session of the runtime with the driver and a companion, and records it. Behind the options stand the "
      "companion's program and its arguments; without them it runs already");
  bench::SimulationOptions& simulation = options.simulation;
  simulation.seconds = 10;
  app.add_option("--driver", simulation.driver, "The driver's folder, or its library")->required();
  app.add_option("--recording", options.recording, "File for what is recorded")->required();
  app.add_option("--settings", simulation.settings, "File of settings that lie over the driver's defaults");
  app.add_option("--seconds", simulation.seconds, "Of frames");
  app.add_option("--fps", simulation.fps, "Frames per second, instead of the display rate that the driver reports");
  app.add_option("--haptics", simulation.haptics, "JSON list of pulses, as of runtime_sim");
  app.add_option("--driver-log", simulation.driverLog, "File for the driver's log");
  app.add_option("--monitor", options.monitor, "Program that is started for a ShutdownRequest to end");
  app.add_option("--wait", options.waitSeconds, "Seconds to wait for the companion's process");
  app.add_option("--companion-log", options.companionLog, "File for what a companion that is started here prints");
  app.add_flag("--keep-devices", simulation.keepDevices, "Never let go of Direct3D devices, as of runtime_sim");
  bench::AddSharingOption(app, simulation.sharing);
  app.prefix_command();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  options.command = app.remaining();
  return std::nullopt;
}

bool BlockExists(const std::string& name) {
  return static_cast<bool>(bench::OwnedHandle(OpenFileMappingA(FILE_MAP_READ, FALSE, name.c_str())));
}

void LookForBlock(const std::string& name, const bench::RecordingFile& file) {
  const bool gone = name.empty() || bench::WaitUntil([&] { return !BlockExists(name); }, kBlockPatience);
  if (!gone) file.Add(EventKind::kBlockLeft);
}

int Play(const Options& options, const bench::RecordingFile& file, std::uint32_t companion) {
  const bench::MutexRecorder mutexes(file);
  if (!mutexes.Works()) std::puts("runtime: keyed mutexes cannot be watched here");
  std::optional<bench::PipeRecorder> pipes;  // outlives the driver's last call, which is the simulation's
  bench::Simulation simulation(options.simulation);
  pipes.emplace(GetModuleHandleA("driver_ombrel.dll"), file);
  const bench::CompanionWatch watch(companion, file, [&simulation] { simulation.Stop(); });
  std::optional<bench::ChildProcess> monitor;
  if (!options.monitor.empty()) monitor.emplace(options.monitor, std::vector<std::string>{"3600"});
  std::jthread ending([&](const std::stop_token& stop) {
    while (monitor && monitor->IsRunning() && !stop.stop_requested()) std::this_thread::sleep_for(20ms);
    if (!stop.stop_requested() && monitor) simulation.Stop();
  });
  const int code = simulation.Run();
  LookForBlock(pipes->BlockName(), file);
  return code;
}

int Record(const Options& options) {
  std::printf("runtime: %s\n", bench::ChooseSharing(options.simulation.sharing).Text().c_str());
  std::optional<bench::TriedCompanion> tried;
  if (!options.command.empty()) {
    if (const auto why = bench::WhyNotToTry(options.command.front()); !why.empty()) {
      std::fprintf(stderr, "%s\n", why.c_str());
      return kNotTried;
    }
    tried.emplace(options.command, options.companionLog);
  }
  const bench::RecordingFile file(options.recording, checker::Side::kDriver);
  std::uint32_t companion = 0;
  const auto patience = std::chrono::milliseconds(static_cast<std::int64_t>(options.waitSeconds * 1000));
  if (!bench::WaitUntil([&] { return (companion = bench::FindProcess(OMBREL_PROCESS_NAME)) != 0; }, patience)) {
    std::fprintf(stderr, "runtime: no process is named " OMBREL_PROCESS_NAME "\n");
    file.Add(EventKind::kEnded);
    return kNoCompanion;
  }
  const int code = Play(options, file, companion);
  file.Add(EventKind::kEnded);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  if (const auto code = bench::AnswerSharing(argc, argv)) return *code;
  Options options;
  if (const auto code = ParseOptions(argc, argv, options)) return *code;
  try {
    return Record(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "runtime: %s\n", error.what());
    return 1;
  }
}
