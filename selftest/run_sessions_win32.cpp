#include "run_sessions_win32.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <sstream>

#include "base/child_process.h"
#include "base/text_file.h"
#include "base/wait.h"

namespace ombrel::selftest {
namespace {

using bench::ChildProcess;

constexpr std::uint32_t kStartMs = 60'000;
constexpr std::uint32_t kEndMs = 90'000;
constexpr std::uint32_t kFaultsMs = 300'000;
constexpr const char* kPipesAreOpen = "pipes open";

// As the command lines of the stand-ins take it.
std::string Text(const std::filesystem::path& path) { return path.generic_string(); }

// What a program said last, for who reads why it failed.
std::string LastLine(const std::filesystem::path& log) {
  std::istringstream lines(bench::ReadText(log));
  std::string line, last;
  while (std::getline(lines, line)) {
    std::erase(line, '\r');
    if (!line.empty()) last = line;
  }
  return last;
}

std::string Ended(const std::optional<std::uint32_t>& code) {
  return code ? "exit code " + std::to_string(*code) : "it had to be ended";
}

SessionOutcome Failed(const SessionPlan& plan, const std::string& why) {
  SessionOutcome session;
  session.plan = plan;
  session.failure = why;
  return session;
}

class SessionRunner {
 public:
  SessionRunner(const Surroundings& surroundings, const SessionPlan& plan)
      : surroundings_(surroundings), plan_(plan), folder_(surroundings.work / (plan.mode + std::to_string(plan.fps))) {
    std::filesystem::create_directories(folder_);
  }

  SessionOutcome Run() {
    if (const std::string failure = Play(); !failure.empty()) return Failed(plan_, failure);
    SessionOutcome session = ReadOutcome(plan_, folder_);
    session.picturesWanted = kPictures;
    return session;
  }

 private:
  static constexpr std::uint64_t kPictures = 3;  // that session.json names

  [[nodiscard]] std::string File(const char* name) const { return Text(folder_ / name); }

  [[nodiscard]] std::vector<std::string> CompanionArguments() const {
    // Twice as many poses as frames: a finished texture of the virtual display waits for one.
    return {"--until-disconnect",
            "--script",
            Text(surroundings_.programs / "session.json"),
            "--framerate",
            std::to_string(plan_.fps),
            "--pose-rate",
            std::to_string(2 * plan_.fps),
            "--out",
            Text(folder_),
            "--summary",
            File("companion.json"),
            "--csv",
            File("companion_frames.csv"),
            "--poses-csv",
            File("companion_poses.csv"),
            "--sharing",
            surroundings_.sharing};
  }

  [[nodiscard]] std::vector<std::string> RuntimeArguments() const {
    std::vector<std::string> arguments{"--driver",
                                       Text(surroundings_.driver),
                                       "--settings",
                                       File("settings.json"),
                                       "--mode",
                                       plan_.mode,
                                       "--fps",
                                       std::to_string(plan_.fps),
                                       "--seconds",
                                       std::to_string(plan_.seconds),
                                       "--quiet",
                                       "--summary",
                                       File("runtime.json"),
                                       "--csv",
                                       File("runtime_frames.csv"),
                                       "--poses-csv",
                                       File("runtime_poses.csv"),
                                       "--sharing",
                                       surroundings_.sharing};
    if (surroundings_.isWine) arguments.emplace_back("--keep-devices");
    return arguments;
  }

  // The size that the places of session.json's pictures are for.
  void WriteSettings() const {
    const Json settings{
        {"driver_ombrel", {{"hmdMode", plan_.mode == "direct" ? 0 : 1}, {"windowWidth", 1280}, {"windowHeight", 720}}}};
    bench::WriteText(folder_ / "settings.json", settings.dump());
  }

  // Empty when both programs came to their end, whatever they thought of it.
  std::string Play() {
    WriteSettings();
    const auto companionLog = folder_ / "companion.log";
    const ChildProcess companion(surroundings_.programs / "companion/Ombrel.exe", CompanionArguments(), companionLog);
    const auto isReady = [&] { return bench::ReadText(companionLog).find(kPipesAreOpen) != std::string::npos; };
    if (!bench::WaitUntil([&] { return isReady() || !companion.IsRunning(); }, std::chrono::milliseconds(kStartMs)) ||
        !isReady()) {
      return "the companion does not start: " + LastLine(companionLog);
    }
    const auto forFrames = static_cast<std::uint32_t>(1000 * plan_.seconds);
    const auto runtimeLog = folder_ / "runtime.log";
    const Ending runtime =
        RunToEnd(surroundings_.programs / "runtime_sim.exe", RuntimeArguments(), runtimeLog, forFrames + kEndMs);
    if (runtime.code != 0) return "the runtime failed (" + runtime.text + "): " + LastLine(runtimeLog);
    const auto code = companion.WaitForEnd(kEndMs);
    if (!code || *code > 1) return "the companion failed (" + Ended(code) + "): " + LastLine(companionLog);
    return {};
  }

  const Surroundings& surroundings_;
  const SessionPlan plan_;
  const std::filesystem::path folder_;
};

}  // namespace

Ending RunToEnd(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                const std::filesystem::path& output, std::uint32_t timeoutMs) {
  constexpr std::uint32_t kNone = 0xFFFFFFFF;
  const ChildProcess process(program, arguments, output);
  const auto code = process.WaitForEnd(timeoutMs);
  return {code.value_or(kNone), Ended(code)};
}

SessionOutcome RunSession(const Surroundings& surroundings, const SessionPlan& plan) {
  try {
    return SessionRunner(surroundings, plan).Run();
  } catch (const std::exception& error) {
    return Failed(plan, error.what());
  }
}

FaultsRun RunFaults(const Surroundings& surroundings, const std::vector<FaultPlan>& faults) {
  FaultsRun run;
  const auto report = surroundings.work / "faults.json", log = surroundings.work / "faults.log";
  std::vector<std::string> arguments{
      "--driver",  Text(surroundings.Driver()), "--companion", Text(surroundings.programs / "faults/Ombrel.exe"),
      "--sharing", surroundings.sharing,        "--json",      Text(report)};
  for (const FaultPlan& fault : faults) arguments.emplace_back(fault.scenario);
  try {
    run.exit = RunToEnd(surroundings.programs / "scenarios.exe", arguments, log, kFaultsMs).text;
    run.exit += ", " + LastLine(log);
    if (std::filesystem::exists(report)) run.report = Json::parse(bench::ReadText(report), nullptr, false);
  } catch (const std::exception& error) {
    run.exit = error.what();
  }
  if (run.report.is_discarded()) run.report = nullptr;
  return run;
}

}  // namespace ombrel::selftest
