#include "plots.h"

#include <algorithm>
#include <fstream>

#include "companion/statistics.h"
#include "growth.h"
#include "tables.h"

namespace bench::speed {
namespace {

std::string FileName(std::string name) {
  std::ranges::replace(name, ' ', '_');
  return name;
}

// The share of values that are not above a value, at a few hundred points.
void WriteDistribution(const std::filesystem::path& file, std::vector<double> values) {
  constexpr std::size_t kPoints = 400;
  std::ranges::sort(values);
  std::ofstream out(file);
  const std::size_t points = std::min(kPoints, values.size());
  for (std::size_t i = 1; i <= points; ++i) {
    const std::size_t rank = i * values.size() / points;
    out << values[rank - 1] << ' ' << static_cast<double>(rank) / static_cast<double>(values.size()) << '\n';
  }
}

// From what nearly nothing is below to what nearly nothing is above: a single late value would squeeze the rest.
void WriteRange(std::ostream& script, const Series& series) {
  double low = 1e300, high = -1e300;
  for (const std::string& side : series.Sides()) {
    low = std::min(low, Percentile(series.Of(side), 0.002));
    high = std::max(high, Percentile(series.Of(side), 0.98));
  }
  const double margin = 0.05 * (high - low);
  script << "set xrange [" << low - margin << ":" << high + margin << "]\n";
}

void WriteDistributions(const std::filesystem::path& folder, std::ostream& script, const Series& series) {
  const std::string name = FileName(series.name);
  script << "set output '" << name << ".svg'\nset title '" << series.name << "'\nset xlabel '" << series.unit
         << "'\nset ylabel 'share of values not above'\nset yrange [0:1]\nunset logscale\n";
  WriteRange(script, series);
  script << "plot ";
  const char* separator = "";
  for (const std::string& side : series.Sides()) {
    const std::string data = "data/" + name + "-" + FileName(side) + ".dat";
    WriteDistribution(folder / data, series.Of(side));
    script << separator << "'" << data << "' with steps linewidth 2 title '" << side << "'";
    separator = ", ";
  }
  script << "\n";
}

void WriteScale(const std::filesystem::path& folder, std::ostream& script, const Series& series) {
  const std::string name = FileName("scale " + series.name);
  const Growth growth = GrowthOf(series);
  std::ofstream data(folder / "data" / (name + ".dat"));
  for (std::size_t i = 0; i < growth.sizes.size(); ++i) data << growth.sizes[i] << ' ' << growth.costs[i] << '\n';
  script << "set output '" << name << ".svg'\nset title 'cost against " << series.name << "'\nset xlabel '"
         << series.name << "'\nset ylabel '" << series.unit
         << "'\nset xrange [*:*]\nset yrange [0:*]\nset logscale x\nplot 'data/" << name
         << ".dat' with linespoints linewidth 2 title 'median'\n";
}

}  // namespace

void WritePlots(const std::filesystem::path& folder, const std::vector<Series>& all) {
  std::filesystem::create_directories(folder / "data");
  std::ofstream script(folder / "plots.gp");
  script << "set terminal svg size 720,420 dynamic background 'white'\nset grid\nset key bottom right\n";
  for (const Series& series : all) {
    if (!series.Of(kFloor).empty()) WriteDistributions(folder, script, series);
  }
  for (const Series* scale : Scales(all)) WriteScale(folder, script, *scale);
}

}  // namespace bench::speed
