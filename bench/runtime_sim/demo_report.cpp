// Lays the files of the stand-in runtime beside those of the stand-in companion and prints one line of figures.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "base/percentile.h"
#include "csv_table.h"
#include "latency.h"

namespace bench {
namespace {

struct Files {
  std::filesystem::path runtimeFrames;
  std::filesystem::path runtimePoses;
  std::filesystem::path companionFrames;
  std::filesystem::path companionPoses;
  std::filesystem::path json;
};

struct Report {
  double posesPerSecond = 0.0;
  double framesPerSecond = 0.0;
  std::size_t framesPresented = 0;
  std::size_t framesReceived = 0;
  std::uint64_t dropped = 0;
  std::vector<double> poseMs;
  std::vector<double> frameMs;
  bool framesByTime = false;
};

std::int64_t Frequency(const CsvTable& table) {
  const std::size_t column = table.Column("qpc_frequency");
  return table.rows.empty() ? 0 : std::strtoll(table.rows.front()[column].c_str(), nullptr, 10);
}

double PerSecond(const std::vector<TimedPose>& events, std::int64_t frequency) {
  if (events.size() < 2) {
    return 0.0;
  }
  const auto seconds = static_cast<double>(events.back().ticks - events.front().ticks) / static_cast<double>(frequency);
  return seconds > 0.0 ? static_cast<double>(events.size() - 1) / seconds : 0.0;
}

std::vector<double> ToMilliseconds(const std::vector<std::int64_t>& ticks, std::int64_t frequency) {
  std::vector<double> milliseconds;
  for (const std::int64_t value : ticks) {
    milliseconds.push_back(1000.0 * static_cast<double>(value) / static_cast<double>(frequency));
  }
  return milliseconds;
}

std::uint64_t SumOf(const CsvTable& table, const std::string& name) {
  const std::size_t column = table.Column(name);
  std::uint64_t sum = 0;
  for (const auto& row : table.rows) {
    sum += std::strtoull(row[column].c_str(), nullptr, 10);
  }
  return sum;
}

Report Build(const Files& files) {
  const CsvTable runtimeFrames = ReadCsvFile(files.runtimeFrames);
  const CsvTable runtimePoses = ReadCsvFile(files.runtimePoses);
  const std::vector<TimedPose> presented = ReadTimedPoses(runtimeFrames);
  const std::vector<TimedPose> arrived = ReadTimedPoses(runtimePoses);
  const std::vector<TimedPose> held = ReadTimedPoses(ReadCsvFile(files.companionFrames));
  const std::vector<TimedPose> sent = ReadTimedPoses(ReadCsvFile(files.companionPoses));
  const std::int64_t frequency = Frequency(runtimePoses);
  Report report;
  report.posesPerSecond = PerSecond(arrived, frequency);
  report.framesPerSecond = PerSecond(held, frequency);
  report.framesPresented = presented.size();
  report.framesReceived = held.size();
  report.dropped = SumOf(runtimeFrames, "missed");
  report.poseMs = ToMilliseconds(PoseLatencies(sent, arrived), frequency);
  report.frameMs = ToMilliseconds(FrameLatencies(presented, held), frequency);
  if (report.frameMs.empty()) {
    report.framesByTime = true;
    report.frameMs = ToMilliseconds(FrameLatenciesByTime(presented, held), frequency);
  }
  return report;
}

void WriteJson(const Report& report, const std::filesystem::path& file) {
  const nlohmann::ordered_json json = {{"posesPerSecond", report.posesPerSecond},
                                       {"framesPerSecond", report.framesPerSecond},
                                       {"framesPresented", report.framesPresented},
                                       {"framesReceived", report.framesReceived},
                                       {"droppedFrames", report.dropped},
                                       {"poseToRuntimeMedianMs", Percentile(report.poseMs, 0.5)},
                                       {"poseToRuntimeP99Ms", Percentile(report.poseMs, 0.99)},
                                       {"posesMeasured", report.poseMs.size()},
                                       {"frameToCompanionMedianMs", Percentile(report.frameMs, 0.5)},
                                       {"frameToCompanionP99Ms", Percentile(report.frameMs, 0.99)},
                                       {"framesMeasured", report.frameMs.size()},
                                       {"framesMeasuredByTime", report.framesByTime}};
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << json.dump(2) << '\n';
  if (!stream) {
    throw std::runtime_error("cannot write " + file.string());
  }
}

// Every figure must rest on something: a line of zeros is no summary.
void RequireFigures(const Report& report) {
  if (report.posesPerSecond <= 0.0 || report.framesPerSecond <= 0.0) {
    throw std::runtime_error("too few poses or frames for a rate");
  }
  if (report.poseMs.empty() || report.frameMs.empty()) {
    throw std::runtime_error("no pose or no frame was found at both ends, so there is no latency");
  }
}

void Print(const Report& report) {
  std::printf(
      "summary: %.1f poses/s, %.1f frames/s, %zu of %zu frames received, %llu dropped, pose to runtime median %.2f ms "
      "p99 %.2f ms, frame to companion median %.2f ms p99 %.2f ms%s\n",
      report.posesPerSecond, report.framesPerSecond, report.framesReceived, report.framesPresented,
      static_cast<unsigned long long>(report.dropped), Percentile(report.poseMs, 0.5), Percentile(report.poseMs, 0.99),
      Percentile(report.frameMs, 0.5), Percentile(report.frameMs, 0.99), report.framesByTime ? " (by time)" : "");
}

int Main(int argc, char** argv) {
  CLI::App app("Prints one line of figures of a session from the files of both its ends");
  Files files;
  app.add_option("--runtime-frames", files.runtimeFrames, "runtime_sim's --csv")->required();
  app.add_option("--runtime-poses", files.runtimePoses, "runtime_sim's --poses-csv")->required();
  app.add_option("--companion-frames", files.companionFrames, "companion_sim's --csv")->required();
  app.add_option("--companion-poses", files.companionPoses, "companion_sim's --poses-csv")->required();
  app.add_option("--json", files.json, "File for the same figures as JSON");
  CLI11_PARSE(app, argc, argv);
  const Report report = Build(files);
  RequireFigures(report);
  Print(report);
  if (!files.json.empty()) {
    WriteJson(report, files.json);
  }
  return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    return bench::Main(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "report: %s\n", error.what());
    return 1;
  }
}
