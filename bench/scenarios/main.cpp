// Plays faults and long sessions to the driver, and says what came of them: README.md has the list.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/clock.h"
#include "companion_child.h"
#include "driver_life.h"
#include "scenario.h"
#include "scenario_report.h"
#include "sharing/question.h"
#include "sharing/sharing_option.h"

namespace {

using bench::scenarios::AllScenarios;
using bench::scenarios::CallWatch;
using bench::scenarios::CompanionChild;
using bench::scenarios::DriverLife;
using bench::scenarios::Scenario;
using bench::scenarios::ScenarioReport;
using bench::scenarios::ScenarioRun;

struct Options {
  bool isLong = false;
  bool list = false;
  std::string driver, companion, callsFile, jsonFile;
  std::optional<bench::Sharing> sharing;
  std::vector<std::string> names;
};

const char* playing = "";

// A crash is a failure with a name.
LONG WINAPI SayWhatCrashed(EXCEPTION_POINTERS* exception) {
  std::printf("FAIL  %s: the program crashed with %08lx\n", playing, exception->ExceptionRecord->ExceptionCode);
  std::fflush(stdout);
  return EXCEPTION_CONTINUE_SEARCH;
}

bool IsPlayable(const Scenario& scenario) {
  return !scenario.answersForDirect3D || bench::SharingInUse() == bench::Sharing::kStandIn;
}

bool Play(const Scenario& scenario, const Options& options, CallWatch& calls, ScenarioReport& report) {
  if (!IsPlayable(scenario)) {
    std::printf("SKIP  %s: only the stand-in's Direct3D can be made to fail\n", scenario.name);
    report.AddSkipped(scenario.name);
    return true;
  }
  ScenarioRun run(calls, options.isLong, options.driver, options.companion);
  playing = scenario.name;
  if (!scenario.usesSharedLife) DriverLife::EndShared();
  std::printf("RUN   %s\n", scenario.name);
  std::fflush(stdout);
  const std::int64_t begin = bench::NowTicks();
  try {
    scenario.play(run);
  } catch (const std::exception& error) {
    run.Check(false, error.what());
  }
  // The next scenario is not to begin with what a fault left.
  if (!run.Failures().empty()) DriverLife::EndShared();
  for (const std::string& late : calls.TakeLateCalls()) run.Check(false, late);
  for (const std::string& failure : run.Failures()) std::printf("      failed: %s\n", failure.c_str());
  for (const std::string& skipped : run.Skipped()) std::printf("      skipped: %s\n", skipped.c_str());
  const double seconds = bench::TicksToSeconds(bench::NowTicks() - begin);
  std::printf("%s  %s (%.1f s): %s\n", run.Failures().empty() ? "PASS" : "FAIL", scenario.name, seconds,
              run.Figures().c_str());
  std::fflush(stdout);
  report.Add(scenario.name, run, seconds);
  return run.Failures().empty();
}

std::vector<Scenario> Chosen(const Options& options) {
  std::vector<Scenario> all = AllScenarios();
  if (options.names.empty()) return all;
  std::vector<Scenario> chosen;
  for (const std::string& name : options.names) {
    const auto found = std::ranges::find(all, name, &Scenario::name);
    if (found == all.end()) throw std::runtime_error("no scenario is named " + name);
    chosen.push_back(*found);
  }
  return chosen;
}

int Run(const Options& options) {
  const std::vector<Scenario> chosen = Chosen(options);
  if (options.list) {
    for (const Scenario& scenario : chosen) std::printf("%s\n", scenario.name);
    return 0;
  }
  const bench::SharingDecision sharing = bench::ChooseSharing(options.sharing);
  std::printf("%s\n", sharing.Text().c_str());
  ScenarioReport report(options.jsonFile, sharing);
  // Wine does not close its registry keys when it unloads this one of the driver's imports, and would let handles grow.
  LoadLibraryA("winmm.dll");
  // The driver does not start without a process of this name.
  const CompanionChild present(options.companion, "idle");
  CallWatch calls;
  const auto failed =
      std::ranges::count_if(chosen, [&](const Scenario& scenario) { return !Play(scenario, options, calls, report); });
  DriverLife::EndShared();
  calls.PrintTable();
  std::printf("%zu scenarios, %d failed\n", chosen.size(), static_cast<int>(failed));
  if (!options.callsFile.empty() && !calls.AppendCsv(options.callsFile)) return 2;
  return failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (const auto code = bench::AnswerSharing(argc, argv)) return *code;
  Options options;
  CLI::App app("Plays faults and long sessions to the driver");
  app.add_flag("--long", options.isLong, "the long form of each scenario");
  app.add_flag("--list", options.list, "names only");
  app.add_option("--driver", options.driver, "the driver's library");
  app.add_option("--companion", options.companion, "the program Ombrel.exe of this folder");
  app.add_option("--calls", options.callsFile, "append the table of calls to this file");
  app.add_option("--json", options.jsonFile, "what came of each scenario, as JSON; written anew after each of them");
  bench::AddSharingOption(app, options.sharing);
  app.add_option("names", options.names, "scenarios to play; all, if none is named");
  CLI11_PARSE(app, argc, argv);
  SetUnhandledExceptionFilter(SayWhatCrashed);
  try {
    return Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "scenarios: %s\n", error.what());
    return 2;
  }
}
