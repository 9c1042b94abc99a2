// Lays the logs of the runtime's and the companion's stand-ins side by side: how long a pose takes from the companion
// to the runtime, and how long a frame takes from the runtime to the companion. Both programs log the same
// performance counter, and every pose can be told from the others.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "CLI/CLI.hpp"
#include "companion/latency_join.h"
#include "companion/statistics.h"
#include "nlohmann/json.hpp"

namespace {

struct Files {
  std::filesystem::path companionPoses, runtimePoses, runtimeFrames, companionFrames, summary;
};

bench::TimedPoses Read(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return bench::ReadTimedPoses(file);
}

nlohmann::ordered_json Report(const char* what, const bench::TimedPoses& earlier, const bench::TimedPoses& later,
                              float tolerance) {
  const auto delays = bench::DelaysMs(earlier, later, tolerance);
  if (delays.empty()) {
    std::printf("%s: not known, no pose is in both logs\n", what);
    return nullptr;
  }
  const double median = bench::Percentile(delays, 0.5), p99 = bench::Percentile(delays, 0.99);
  std::printf("%s: median %.2f ms, p99 %.2f ms (%zu of %zu sent, %zu received)\n", what, median, p99, delays.size(),
              earlier.poses.size(), later.poses.size());
  return {{"median", median},
          {"p99", p99},
          {"matched", delays.size()},
          {"sent", earlier.poses.size()},
          {"received", later.poses.size()}};
}

int Run(const Files& files, float tolerance) {
  const auto runtimeFrames = Read(files.runtimeFrames), companionFrames = Read(files.companionFrames);
  nlohmann::ordered_json summary;
  // A driver may report a pose again, which is then no news.
  summary["poseToRuntimeMs"] =
      Report("pose to runtime", Read(files.companionPoses), bench::WithoutRepeats(Read(files.runtimePoses)), tolerance);
  // The pose beside a frame is the runtime's own, float for float.
  summary["frameToCompanionMs"] = Report("frame to companion", runtimeFrames, companionFrames, 0);
  if (!files.summary.empty() && !(std::ofstream(files.summary) << summary.dump(2) << '\n')) {
    throw std::runtime_error("cannot write " + files.summary.string());
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Files files;
  float tolerance = 1e-3F;
  CLI::App app("Latencies between the stand-ins of the runtime and of the companion, from their logs");
  app.add_option("--companion-poses", files.companionPoses, "The companion's --poses-csv")->required();
  app.add_option("--runtime-poses", files.runtimePoses, "The runtime's poses CSV")->required();
  app.add_option("--runtime-frames", files.runtimeFrames, "The runtime's frames CSV")->required();
  app.add_option("--companion-frames", files.companionFrames, "The companion's --csv")->required();
  app.add_option("--summary", files.summary, "File for the figures as JSON");
  app.add_option("--tolerance", tolerance, "Largest difference of the same pose's floats at both ends");
  CLI11_PARSE(app, argc, argv);
  try {
    return Run(files, tolerance);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "latency_report: %s\n", error.what());
    return 2;
  }
}
