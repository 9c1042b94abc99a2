// The parts that need no Windows, each held to its floor in turns: a ratio twice what it should be is no noise. The
// figures themselves are tools/bench.sh's.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "timing.h"

namespace ombrel::test {
namespace {

constexpr double kSlack = 2.0;

using Timing = std::function<double(int calls)>;

// The median of the ratios of neighbouring blocks.
double Ratio(const Timing& floor, const Timing& driver) {
  constexpr int kBlocks = 41, kCalls = 5000;
  std::vector<double> ratios;
  for (int i = 0; i < kBlocks; ++i) {
    const double nothing = TimeNothing(kCalls);
    const double least = floor(kCalls) - nothing;
    ratios.push_back((driver(kCalls) - nothing) / least);
  }
  std::ranges::nth_element(ratios, ratios.begin() + kBlocks / 2);
  return ratios[kBlocks / 2];
}

bool HasFormulaFloor(const PoseFormatCase& format) {
  const std::vector<FormulaCase> formulas = FormulaCases();
  return std::ranges::find(formulas, format.name, &FormulaCase::name) != formulas.end();
}

TEST(ShortForm, PosesAreDecodedAndPublishedNearTheirFloor) {
  for (const PoseFormatCase& format : PoseFormatCases()) {
    if (HasFormulaFloor(format)) continue;
    EXPECT_LE(Ratio(TimePoseFloor, [&](int calls) { return TimePoses(format, calls); }), kSlack * format.goal)
        << "format " << format.name;
  }
}

// What a sine costs is the C library's doing, and differs several times between libraries.
TEST(ShortForm, PosesOfCostlyFormulasAreDecodedAndPublishedNearTheirFormulas) {
  const std::vector<PoseFormatCase> formats = PoseFormatCases();
  for (const FormulaCase& formula : FormulaCases()) {
    const PoseFormatCase& format = FindCase(formats, formula.name);
    EXPECT_LE(Ratio([&](int calls) { return TimeFormulaFloor(format, formula, calls); },
                    [&](int calls) { return TimePoses(format, calls); }),
              kSlack)
        << "format " << format.name;
  }
}

TEST(ShortForm, ControllerRecordsAreTakenNearTheirFloor) {
  constexpr double kGoal = 1.5;
  for (const bool changes : {false, true}) {
    EXPECT_LE(Ratio(TimeControllerFloor, [=](int calls) { return TimeControllerRecords(changes, calls); }),
              kSlack * kGoal)
        << (changes ? "with changes" : "without a change");
  }
}

// A floor that came to other orientations would be none.
TEST(ShortForm, FormulaFloorsPublishWhatTheDriverDoes) {
  const std::vector<PoseFormatCase> formats = PoseFormatCases();
  for (const FormulaCase& formula : FormulaCases()) {
    const PoseFormatCase& format = FindCase(formats, formula.name);
    PosePublisher publisher(format);
    bench::floor::FormulaFloor floor = FloorBefore(format);
    for (const Payload& payload : format.payloads) {
      publisher.Publish(payload);
      formula.publish(floor, payload);
      const Quaternion driver = publisher.Published().orientation;
      const auto [x, y, z, w] = floor.Published().orientation;
      EXPECT_LT(
          std::max({std::abs(driver.x - x), std::abs(driver.y - y), std::abs(driver.z - z), std::abs(driver.w - w)}),
          1e-6F)
          << formula.name;
    }
    EXPECT_FALSE(publisher.Published().orientation == Quaternion{}) << formula.name;
  }
}

}  // namespace
}  // namespace ombrel::test
