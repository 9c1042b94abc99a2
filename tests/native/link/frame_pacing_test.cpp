#include "link/frame_pacing.h"

#include <gtest/gtest.h>

#include <limits>

namespace ombrel::test {
namespace {

constexpr std::int64_t kTenMegahertz = 10'000'000;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(FramePeriod, IsTheQuotientInSinglePrecision) {
  EXPECT_EQ(FramePeriodMs(60), 16.66666603088379);
  EXPECT_EQ(FramePeriodMs(72), 13.88888931274414);
  EXPECT_EQ(FramePeriodMs(90), 11.111110687255859);
  EXPECT_EQ(FramePeriodMs(1), 1000.0);
  EXPECT_EQ(FramePeriodMs(2000), 0.5);
}

TEST(FramePeriod, IsInfiniteForARateOfZero) { EXPECT_EQ(FramePeriodMs(0), kInfinity); }

TEST(FramePeriod, TakesTheRateAsUnsigned) {
  EXPECT_NEAR(FramePeriodMs(0x80000000U), 4.656612873e-7, 1e-13);
  EXPECT_NEAR(FramePeriodMs(0xFFFFFFFFU), 2.328306437e-7, 1e-13);
}

TEST(KeyedMutexTimeout, IsThePeriodInWholeMilliseconds) {
  EXPECT_EQ(KeyedMutexTimeoutMs(FramePeriodMs(90)), 11U);
  EXPECT_EQ(KeyedMutexTimeoutMs(FramePeriodMs(60)), 16U);
  EXPECT_EQ(KeyedMutexTimeoutMs(FramePeriodMs(1)), 1000U);
  EXPECT_EQ(KeyedMutexTimeoutMs(0.999), 0U);
  EXPECT_EQ(KeyedMutexTimeoutMs(0.0), 0U);
}

TEST(KeyedMutexTimeout, IsASecondAtMost) {
  EXPECT_EQ(KeyedMutexTimeoutMs(FramePeriodMs(0)), 1000U);
  EXPECT_EQ(KeyedMutexTimeoutMs(1e300), 1000U);
}

TEST(Remaining, IsThePeriodLessWhatHasPassed) {
  EXPECT_DOUBLE_EQ(RemainingMs(11.0, 0, kTenMegahertz), 11.0);
  EXPECT_DOUBLE_EQ(RemainingMs(11.0, 40'000, kTenMegahertz), 7.0);
  EXPECT_DOUBLE_EQ(RemainingMs(20.0, 3, 1000), 17.0);
}

TEST(Remaining, IsNothingWhenThePeriodIsOver) {
  EXPECT_EQ(RemainingMs(11.0, 110'000, kTenMegahertz), 0.0);
  EXPECT_EQ(RemainingMs(11.0, std::numeric_limits<std::int64_t>::max(), kTenMegahertz), 0.0);
  EXPECT_EQ(RemainingMs(0.0, 0, kTenMegahertz), 0.0);
}

TEST(Remaining, IsASecondAtMostAndNoMoreThanThePeriod) {
  EXPECT_EQ(RemainingMs(kInfinity, 0, kTenMegahertz), 1000.0);
  EXPECT_EQ(RemainingMs(5000.0, 0, kTenMegahertz), 1000.0);
  EXPECT_EQ(RemainingMs(11.0, -50'000'000, kTenMegahertz), 11.0);
}

TEST(SleepPart, LeavesTheLastMillisecondToSpinning) {
  EXPECT_EQ(SleepPartMs(11.9), 10U);
  EXPECT_EQ(SleepPartMs(2.0), 1U);
  EXPECT_EQ(SleepPartMs(1.999), 0U);
  EXPECT_EQ(SleepPartMs(1.0), 0U);
  EXPECT_EQ(SleepPartMs(1000.0), 999U);
}

TEST(SleepPart, IsNothingForAPeriodOfHalfAMillisecond) {
  EXPECT_EQ(SleepPartMs(RemainingMs(FramePeriodMs(2000), 0, kTenMegahertz)), 0U);
  EXPECT_EQ(SleepPartMs(0.0), 0U);
}

TEST(SleepRest, LeavesTheLastMillisecondToSpinning) {
  EXPECT_DOUBLE_EQ(SleepRestMs(1.75), 0.75);
  EXPECT_EQ(SleepRestMs(1.0), 0.0);
  EXPECT_EQ(SleepRestMs(0.25), 0.0);
}

TEST(SleepRest, IsAMillisecondAtMost) { EXPECT_EQ(SleepRestMs(5.0), 1.0); }

TEST(Spin, IsOverWhenTheCountsMakeUpTheTime) {
  EXPECT_FALSE(IsSpinOver(4'999, kTenMegahertz, 0.5));
  EXPECT_TRUE(IsSpinOver(5'000, kTenMegahertz, 0.5));
  EXPECT_TRUE(IsSpinOver(0, kTenMegahertz, 0.0));
}

TEST(Spin, IsComparedInSinglePrecision) {
  // 16,777,217 counts are 16,777,216 in single precision.
  EXPECT_TRUE(IsSpinOver(16'777'216, 16'777'217'000, 1.0));
  EXPECT_FALSE(IsSpinOver(16'777'215, 16'777'217'000, 1.0));
}

}  // namespace
}  // namespace ombrel::test
