#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

#include <CLI/CLI.hpp>

#include "plots.h"
#include "speed/series.h"
#include "tables.h"

namespace {

using bench::speed::Series;

void Append(std::vector<Series>& all, std::vector<Series> more) {
  for (Series& series : more) all.push_back(std::move(series));
}

nlohmann::json Read(const std::filesystem::path& file) { return nlohmann::json::parse(std::ifstream(file)); }

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Writes tables to standard output, and a script for plots, of what was measured");
  std::vector<std::filesystem::path> files, benchmarks;
  std::filesystem::path plots;
  app.add_option("--values", files, "files of driver_speed");
  app.add_option("--benchmarks", benchmarks, "files of Google Benchmark");
  app.add_option("--plots", plots, "the folder for plots and their data");
  CLI11_PARSE(app, argc, argv);
  try {
    std::vector<Series> all;
    for (const auto& file : files) Append(all, bench::speed::SeriesFromJson(Read(file)));
    for (const auto& file : benchmarks) Append(all, bench::speed::SeriesFromBenchmarks(Read(file)));
    std::cout << "## Against the floors\n\n";
    bench::speed::WriteGoals(std::cout, all);
    std::cout << "\nFurther series, without a goal:\n\n";
    bench::speed::WriteFurtherSeries(std::cout, all);
    std::cout << "\n## Scale\n";
    bench::speed::WriteScales(std::cout, all);
    if (!plots.empty()) bench::speed::WritePlots(plots, all);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
