// The parts that need no Windows, each held to its floor in turns: a ratio twice what it should be is no noise. The
// figures themselves are tools/bench.sh's.
#include <gtest/gtest.h>

#include <algorithm>
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
    const double least = floor(kCalls);
    ratios.push_back(driver(kCalls) / least);
  }
  std::ranges::nth_element(ratios, ratios.begin() + kBlocks / 2);
  return ratios[kBlocks / 2];
}

TEST(ShortForm, PosesAreDecodedAndPublishedNearTheirFloor) {
  for (const PoseFormatCase& format : PoseFormatCases()) {
    if (format.isMostlyArithmetic) continue;
    EXPECT_LE(Ratio(TimePoseFloor, [&](int calls) { return TimePoses(format, calls); }), kSlack * format.goal)
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

}  // namespace
}  // namespace ombrel::test
