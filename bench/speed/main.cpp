#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "base/text_file.h"
#include "experiments.h"

namespace bench::speed {
namespace {

struct Experiment {
  const char* name;
  bool onOneProcessor;
  std::vector<Series> (*measure)(const Plan&);
};

// Those on one processor come last: there is no way back, since devices keep the number of threads that they began with.
constexpr Experiment kExperiments[] = {
    {"layers", false, MeasureLayerFrames},     {"textures", false, MeasureTextureFrames},
    {"pacing", false, MeasurePacing},          {"starts", false, MeasureStarts},
    {"latency", true, MeasureLatency},         {"formats", true, MeasureFormats},
    {"controllers", true, MeasureControllers},
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

nlohmann::json ToJson(const Series& series) {
  auto blocks = nlohmann::json::array();
  for (const Block& block : series.blocks) blocks.push_back({{"side", block.side}, {"values", block.values}});
  return {{"name", series.name}, {"unit", series.unit}, {"blocks", std::move(blocks)}};
}

void Run(const Plan& plan, const std::vector<std::string>& only, const std::string& out) {
  auto all = nlohmann::json::array();
  for (const Experiment& experiment : kExperiments) {
    if (!only.empty() && std::ranges::find(only, experiment.name) == only.end()) continue;
    std::printf("measuring %s\n", experiment.name);
    std::fflush(stdout);
    if (experiment.onOneProcessor) KeepToOneProcessor();
    for (const Series& series : experiment.measure(plan)) all.push_back(ToJson(series));
  }
  WriteText(out, all.dump());
}

}  // namespace
}  // namespace bench::speed

int main(int argc, char** argv) {
  CLI::App app("Measures the driver, and writes the values as JSON for tools/performance.py");
  bench::speed::Plan plan;
  std::string out;
  std::vector<std::string> only;
  app.add_option("--driver", plan.library, "the driver's DLL")->required();
  app.add_option("--out", out, "where the values go")->required();
  app.add_option("--only", only, "experiments, by name");
  app.add_flag("--short", plan.isShort, "a few seconds in all");
  CLI11_PARSE(app, argc, argv);
  try {
    bench::speed::Run(plan, only, out);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
