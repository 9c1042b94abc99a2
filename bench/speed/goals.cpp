#include "speed/goals.h"

#include <algorithm>
#include <random>

#include "companion/statistics.h"

namespace bench::speed {
namespace {

constexpr double kLatencyMedian = 1.05, kLatencyP99 = 1.25;
constexpr double kDecode = 2.0, kFilter = 4.0, kRecord = 1.5, kFrame = 1.05, kStart = 1.2, kBurst = 0.8;
constexpr double kPacingErrorMs = 0.02, kSpinMs = 1.0;

void AddPacing(std::vector<Goal>& goals) {
  for (const char* rate : {"60", "72", "90", "120", "144"}) {
    const std::string series = std::string("pacing ") + rate;
    goals.push_back({.series = series,
                     .what = "pacing error at " + std::string(rate),
                     .p99 = 1.0,
                     .absoluteMedian = kPacingErrorMs});
    goals.push_back({.series = series + " processor",
                     .what = "processor time polled in a pacing wait at " + std::string(rate),
                     .absoluteMedian = kSpinMs});
  }
}

std::vector<Goal> MakeGoals() {
  std::vector<Goal> goals{
      {.series = "pose latency", .what = "pose latency", .median = kLatencyMedian, .p99 = kLatencyP99},
      {.series = "controller latency", .what = "controller latency", .median = kLatencyMedian, .p99 = kLatencyP99},
      {.series = "burst", .what = "burst, a write for each pose", .leastMedian = kBurst},
  };
  for (const char* format : {"0 rotation matrix", "1 republish", "2 sensors", "3 Euler angles", "4 quaternion",
                             "5 position", "6 pose matrix", "50 recenter", "254 tracking state"}) {
    goals.push_back({.series = "pose",
                     .driverSide = format,
                     .what = std::string("decode and publish, format ") + format,
                     .median = std::string(format) == "2 sensors" ? kFilter : kDecode});
  }
  goals.push_back({.series = "controller unchanged", .what = "controller record without a change", .median = kRecord});
  goals.push_back({.series = "controller changed", .what = "controller record with changes", .median = kRecord});
  goals.push_back({.series = "frame of 1 layer", .what = "direct-mode frame, 1 layer", .median = kFrame});
  goals.push_back({.series = "frame of 4 layers", .what = "direct-mode frame, 4 layers", .median = kFrame});
  goals.push_back({.series = "virtual-display frame", .what = "virtual-display frame", .median = kFrame});
  AddPacing(goals);
  goals.push_back({.series = "start", .what = "start", .median = kStart});
  return goals;
}

// Medians of the blocks of each side, in their order; a driver's block is held against the floor's of the same number.
std::vector<double> BlockRatios(const Series& series, const std::string& driverSide) {
  std::vector<double> floors, ratios;
  std::size_t drivers = 0;
  for (const Block& block : series.blocks) {
    if (block.side == kFloor) floors.push_back(Percentile(block.values, 0.5));
  }
  for (const Block& block : series.blocks) {
    if (block.side != driverSide || drivers == floors.size()) continue;
    ratios.push_back(Percentile(block.values, 0.5) / floors[drivers++]);
  }
  return ratios;
}

using Blocks = std::vector<const Block*>;

Blocks BlocksOf(const Series& series, const std::string& side) {
  Blocks blocks;
  for (const Block& block : series.blocks) {
    if (block.side == side) blocks.push_back(&block);
  }
  return blocks;
}

// The p99 of as many blocks, each drawn by chance.
double DrawnP99(const Blocks& blocks, std::mt19937& random) {
  std::uniform_int_distribution<std::size_t> any(0, blocks.size() - 1);
  std::vector<double> values;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const std::vector<double>& drawn = blocks[any(random)]->values;
    values.insert(values.end(), drawn.begin(), drawn.end());
  }
  return Percentile(std::move(values), 0.99);
}

double LeastP99Ratio(const Blocks& floors, const Blocks& drivers) {
  constexpr int kDraws = 400;
  if (floors.empty() || drivers.empty()) return 0;
  std::mt19937 random(1);
  std::vector<double> ratios;
  for (int i = 0; i < kDraws; ++i) ratios.push_back(DrawnP99(drivers, random) / DrawnP99(floors, random));
  return Percentile(ratios, 0.05);
}

}  // namespace

const std::vector<Goal>& Goals() {
  static const std::vector<Goal> goals = MakeGoals();
  return goals;
}

bool Verdict::IsMedianMet(double slack) const {
  if (goal.median > 0 && !(medianRatio <= goal.median * slack)) return false;
  if (goal.leastMedian > 0 && !(medianRatio >= goal.leastMedian / slack)) return false;
  return !(goal.absoluteMedian > 0) || driverMedian <= goal.absoluteMedian * slack;
}

bool Verdict::IsMet(double slack) const {
  return IsMedianMet(slack) && (!(goal.p99 > 0) || P99Ratio() <= goal.p99 * slack);
}

Outcome Verdict::Result() const {
  if (IsMet()) return Outcome::kMet;
  return IsMedianMet() && leastP99Ratio <= goal.p99 ? Outcome::kUnclear : Outcome::kMissed;
}

std::vector<Verdict> Judge(const std::vector<Series>& all) {
  std::vector<Verdict> verdicts;
  for (const Goal& goal : Goals()) {
    const Series* series = Find(all, goal.series);
    if (series == nullptr) continue;
    const std::vector<double> floors = series->Of(kFloor), drivers = series->Of(goal.driverSide);
    const std::vector<double> ratios = BlockRatios(*series, goal.driverSide);
    verdicts.push_back(
        {.goal = goal,
         .unit = series->unit,
         .floorMedian = Percentile(floors, 0.5),
         .driverMedian = Percentile(drivers, 0.5),
         .floorP99 = Percentile(floors, 0.99),
         .driverP99 = Percentile(drivers, 0.99),
         .medianRatio = Percentile(ratios, 0.5),
         .lowerQuartile = Percentile(ratios, 0.25),
         .upperQuartile = Percentile(ratios, 0.75),
         .leastP99Ratio =
             goal.p99 > 0 ? LeastP99Ratio(BlocksOf(*series, kFloor), BlocksOf(*series, goal.driverSide)) : 0});
  }
  return verdicts;
}

}  // namespace bench::speed
