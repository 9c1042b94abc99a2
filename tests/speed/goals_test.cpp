#include "speed/goals.h"

#include <gtest/gtest.h>

namespace ombrel::test {
namespace {

using bench::speed::Judge;
using bench::speed::kDriver;
using bench::speed::kFloor;
using bench::speed::Outcome;
using bench::speed::Series;
using bench::speed::Verdict;

// Latencies of floor and driver, in two blocks each.
Verdict Latency(double floor, double driver, double lateDriver) {
  Series series{"pose latency", "µs", {}};
  for (int i = 0; i < 2; ++i) {
    series.Add(kFloor, {floor, floor, floor});
    series.Add(kDriver, {driver, driver, lateDriver});
  }
  const auto verdicts = Judge({series});
  EXPECT_EQ(verdicts.size(), 1U);
  return verdicts.at(0);
}

TEST(Goals, AreMetByADriverAtItsFloor) { EXPECT_TRUE(Latency(100, 100, 100).IsMet()); }

TEST(Goals, AreMissedByAMedianThatIsTooLong) {
  EXPECT_FALSE(Latency(100, 110, 110).IsMet());
  EXPECT_FALSE(Latency(100, 110, 110).IsMedianMet());
}

TEST(Goals, AreMissedByALateFew) {
  EXPECT_FALSE(Latency(100, 100, 200).IsMet());
  EXPECT_TRUE(Latency(100, 100, 200).IsMedianMet());
}

TEST(Goals, AllowAsManyTimesMoreAsTheSlackSays) {
  EXPECT_TRUE(Latency(100, 205, 205).IsMedianMet(2.0));
  EXPECT_FALSE(Latency(100, 215, 215).IsMedianMet(2.0));
}

TEST(Goals, CompareNeighboursSoThatASlowWhileCountsForNobody) {
  Series series{"pose latency", "µs", {}};
  for (const double slowness : {1.0, 3.0, 1.0}) {
    series.Add(kFloor, {100 * slowness});
    series.Add(kDriver, {104 * slowness});
  }
  series.Add(kFloor, {100});
  series.Add(kDriver, {300});
  EXPECT_DOUBLE_EQ(Judge({series}).at(0).medianRatio, 1.04);
}

TEST(Goals, OfARateAreMissedByOneThatIsTooLow) {
  Series series{"burst", "poses/s", {}};
  series.Add(kFloor, {1000});
  series.Add(kDriver, {790});
  EXPECT_FALSE(Judge({series}).at(0).IsMet());
  EXPECT_TRUE(Judge({series}).at(0).IsMet(2.0));
}

// Latencies in blocks of ten, of which the last has a late one; the driver's is later.
Verdict LateOnce(double floorsLate, double driversLate, int lateBlocks) {
  Series series{"pose latency", "µs", {}};
  for (int i = 0; i < 20; ++i) {
    std::vector<double> floor(10, 100.0), driver(10, 100.0);
    if (i < lateBlocks) floor[0] = floorsLate, driver[0] = driversLate;
    series.Add(kFloor, floor);
    series.Add(kDriver, driver);
  }
  return Judge({series}).at(0);
}

TEST(Goals, AreUnclearWhenAFewLateOnesDecide) { EXPECT_EQ(LateOnce(300, 500, 3).Result(), Outcome::kUnclear); }

TEST(Goals, AreMissedWhenManyAreLate) {
  EXPECT_EQ(LateOnce(300, 500, 20).Result(), Outcome::kMissed);
  EXPECT_EQ(LateOnce(300, 310, 20).Result(), Outcome::kMet);
  EXPECT_EQ(Latency(100, 110, 110).Result(), Outcome::kMissed);
}

TEST(Goals, OfATimeDoNotDependOnTheFloor) {
  Series series{"pacing 90 processor", "ms", {}};
  series.Add(kFloor, {5.0});
  series.Add(kDriver, {1.5});
  EXPECT_FALSE(Judge({series}).at(0).IsMet());
}

TEST(Goals, AreNotMetByFiguresThatAreNotThere) {
  const Series series{"pose latency", "µs", {}};
  EXPECT_FALSE(Judge({series}).at(0).IsMet());
}

TEST(SeriesOfBenchmarks, HaveTheirSidesBehindTheSlash) {
  const auto json = nlohmann::json::parse(R"({"benchmarks": [
    {"run_name": "pose/floor", "run_type": "iteration", "cpu_time": 6.0},
    {"run_name": "pose/4 quaternion", "run_type": "iteration", "cpu_time": 9.0},
    {"run_name": "pose/floor", "run_type": "aggregate", "cpu_time": 1.0}]})");
  const auto all = bench::speed::SeriesFromBenchmarks(json);
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].Of(kFloor), std::vector<double>{6.0});
  EXPECT_EQ(all[0].Of("4 quaternion"), std::vector<double>{9.0});
}

TEST(SeriesOfBenchmarks, AreWithoutWhatMeasuringTakes) {
  const auto json = nlohmann::json::parse(R"({"benchmarks": [
    {"run_name": "pose/floor", "run_type": "iteration", "cpu_time": 26.0},
    {"run_name": "pose/nothing", "run_type": "iteration", "cpu_time": 8.0},
    {"run_name": "pose/4 quaternion", "run_type": "iteration", "cpu_time": 29.0}]})");
  const auto all = bench::speed::SeriesFromBenchmarks(json);
  EXPECT_EQ(all.at(0).Sides(), (std::vector<std::string>{"floor", "4 quaternion"}));
  EXPECT_EQ(all[0].Of(kFloor), std::vector<double>{18.0});
  EXPECT_EQ(all[0].Of("4 quaternion"), std::vector<double>{21.0});
}

}  // namespace
}  // namespace ombrel::test
