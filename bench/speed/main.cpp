#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include <CLI/CLI.hpp>

#include "experiments.h"
#include "speed/goals.h"
#include "speed/series.h"

namespace {

using bench::speed::Plan;
using bench::speed::Series;

struct Experiment {
  const char* name;
  bool onOneProcessor;
  std::vector<Series> (*measure)(const Plan&);
};

// Those on one processor come last: there is no way back, since devices keep the number of threads that they began with.
constexpr Experiment kExperiments[] = {
    {"layers", false, bench::speed::MeasureLayerFrames}, {"textures", false, bench::speed::MeasureTextureFrames},
    {"pacing", false, bench::speed::MeasurePacing},      {"starts", false, bench::speed::MeasureStarts},
    {"messages", true, bench::speed::MeasureMessages},   {"bursts", true, bench::speed::MeasureBursts},
};

// Which processor a thread happens to run on can double the time in which a message reaches it, and stays so for
// seconds: on one processor, writer and readers are all as near to each other.
void KeepToOneProcessor() {
  DWORD_PTR ours = 0, systems = 0;
  GetProcessAffinityMask(GetCurrentProcess(), &ours, &systems);
  DWORD_PTR last = 1;
  while ((systems >> 1) / last != 0) last <<= 1;
  SetProcessAffinityMask(GetCurrentProcess(), last);
}

// Whether all medians are within twice their goals: only what is far outside noise is not.
bool IsNearGoals(const std::vector<Series>& all) {
  constexpr double kSlack = 2.0;
  bool allNear = true;
  for (const bench::speed::Verdict& verdict : bench::speed::Judge(all)) {
    const bool met = verdict.IsMedianMet(kSlack);
    allNear = allNear && met;
    std::printf("%s: floor %g %s, driver %g%s\n", verdict.goal.what.c_str(), verdict.floorMedian, verdict.unit.c_str(),
                verdict.driverMedian, met ? "" : ", FAR FROM ITS GOAL");
  }
  return allNear && !all.empty();
}

int Run(const Plan& plan, const std::vector<std::string>& only, const std::string& out, bool check) {
  std::vector<Series> all;
  for (const Experiment& experiment : kExperiments) {
    if (!only.empty() && std::ranges::find(only, experiment.name) == only.end()) continue;
    std::printf("measuring %s\n", experiment.name);
    std::fflush(stdout);
    if (experiment.onOneProcessor) KeepToOneProcessor();
    for (Series& series : experiment.measure(plan)) all.push_back(std::move(series));
  }
  std::ofstream(out) << ToJson(all);
  return check && !IsNearGoals(all) ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Measures the driver beside its floors, and writes what it measured");
  Plan plan;
  std::string out;
  std::vector<std::string> only;
  app.add_option("--driver", plan.library, "the driver's DLL")->required();
  app.add_option("--empty-dll", plan.emptyDll, "a DLL that does nothing");
  app.add_option("--out", out, "where the values go, as JSON")->required();
  app.add_option("--only", only, "experiments, by name");
  bool check = false;
  app.add_flag("--check", check, "fail when a median is more than twice its goal");
  app.add_flag("--short", plan.isShort, "a few seconds in all");
  CLI11_PARSE(app, argc, argv);
  try {
    return Run(plan, only, out, check);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
