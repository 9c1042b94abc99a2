#include "tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <string>

#include "companion/statistics.h"
#include "growth.h"
#include "speed/goals.h"

namespace bench::speed {
namespace {

// Three digits that count.
std::string Number(double value) {
  if (!std::isfinite(value)) return "–";
  const double size = std::abs(value);
  const int decimals = size >= 100 || value == 0 ? 0 : size >= 10 ? 1 : size >= 1 ? 2 : size >= 0.1 ? 3 : 4;
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  return text.data();
}

std::string Ratio(double value) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%.2f", value);
  return std::isfinite(value) ? text.data() : "–";
}

std::string GoalText(const Goal& goal, const std::string& unit) {
  std::string text;
  const auto append = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (goal.median > 0) append("≤ " + Ratio(goal.median));
  if (goal.leastMedian > 0) append("≥ " + Ratio(goal.leastMedian));
  if (goal.absoluteMedian > 0) append("median ≤ " + Ratio(goal.absoluteMedian) + " " + unit);
  if (goal.p99 > 0) append("p99 ≤ " + Ratio(goal.p99));
  return text;
}

std::string ResultText(const Verdict& verdict) {
  switch (verdict.Result()) {
    case Outcome::kMet:
      return "met";
    case Outcome::kUnclear:
      return "unclear: p99 from " + Ratio(verdict.leastP99Ratio);
    case Outcome::kMissed:
      break;
  }
  return "**missed**";
}

void WriteRow(std::ostream& out, const Verdict& verdict) {
  out << "| " << verdict.goal.what << ", " << verdict.unit << " | " << Number(verdict.floorMedian) << " | "
      << Number(verdict.driverMedian) << " | " << Ratio(verdict.medianRatio) << " | " << Ratio(verdict.lowerQuartile)
      << " – " << Ratio(verdict.upperQuartile) << " | " << Number(verdict.floorP99) << " | "
      << Number(verdict.driverP99) << " | " << Ratio(verdict.P99Ratio()) << " | "
      << GoalText(verdict.goal, verdict.unit) << " | " << ResultText(verdict) << " |\n";
}

bool IsNumber(const std::string& text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void WriteGoals(std::ostream& out, const std::vector<Series>& all) {
  out << "| what | floor, median | driver, median | ratio | middle half | floor, p99 | driver, p99 | ratio | goal | |\n"
         "| --- | --- | --- | --- | --- | --- | --- | --- | --- | --- |\n";
  for (const Verdict& verdict : Judge(all)) WriteRow(out, verdict);
}

void WriteFurtherSeries(std::ostream& out, const std::vector<Series>& all) {
  out << "| what | floor, median | driver, median | ratio |\n| --- | --- | --- | --- |\n";
  for (const Series& series : all) {
    const bool hasGoal = std::ranges::any_of(Goals(), [&](const Goal& goal) { return goal.series == series.name; });
    if (hasGoal || series.Of(kFloor).empty()) continue;
    const double floor = Percentile(series.Of(kFloor), 0.5);
    for (const std::string& side : series.Sides()) {
      if (side == kFloor) continue;
      const double driver = Percentile(series.Of(side), 0.5);
      out << "| " << series.name << (side == kDriver ? "" : ", " + side) << ", " << series.unit << " | "
          << Number(floor) << " | " << Number(driver) << " | " << Ratio(driver / floor) << " |\n";
    }
  }
}

std::vector<const Series*> Scales(const std::vector<Series>& all) {
  std::vector<const Series*> scales;
  for (const Series& series : all) {
    if (std::ranges::all_of(series.Sides(), IsNumber)) scales.push_back(&series);
  }
  return scales;
}

void WriteScales(std::ostream& out, const std::vector<Series>& all) {
  for (const Series* series : Scales(all)) {
    const Growth growth = GrowthOf(*series);
    out << "\n**Cost against " << series->name << "**, in " << series->unit << ": " << growth.Kind()
        << " (the line: " << Number(growth.perUnit) << " for each, fit " << Ratio(growth.fit) << ")\n\n| ";
    for (const double size : growth.sizes) out << "| " << size << " ";
    out << "|\n| --- ";
    for (std::size_t i = 0; i < growth.sizes.size(); ++i) out << "| --- ";
    out << "|\n| median ";
    for (const double cost : growth.costs) out << "| " << Number(cost) << " ";
    out << "|\n";
  }
}

}  // namespace bench::speed
