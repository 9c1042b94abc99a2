#include "devices/haptic_pulse.h"

#include <gtest/gtest.h>

#include <limits>

namespace ombrel::test {
namespace {

constexpr std::int64_t kTenMegahertz = 10'000'000;

TEST(HapticPulse, CarriesTheControllersId) {
  EXPECT_EQ(MakeHapticPulse(7, 0, kTenMegahertz, 0).controllerId, 7U);
  EXPECT_EQ(MakeHapticPulse(-2, 0, kTenMegahertz, 0).controllerId, 0xFFFFFFFEU);
  EXPECT_EQ(MakeHapticPulse(7, 0, kTenMegahertz, 0).reserved, 0U);
}

TEST(HapticPulse, HasItsTimeInMicroseconds) {
  EXPECT_EQ(MakeHapticPulse(0, 15'000'000, kTenMegahertz, 0).timestampMicroseconds, 1'500'000U);
  EXPECT_EQ(MakeHapticPulse(0, 19, kTenMegahertz, 0).timestampMicroseconds, 1U);
}

TEST(HapticPulse, KeepsTheLow32BitsOfTheTime) {
  // 5000 seconds are 5e9 microseconds: 705,032,704 over 2^32.
  EXPECT_EQ(MakeHapticPulse(0, 50'000'000'000, kTenMegahertz, 0).timestampMicroseconds, 705'032'704U);
}

TEST(HapticPulse, HasItsDurationInMicrosecondsAndKeepsTheLow16Bits) {
  EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, 0.004F).durationMicroseconds, 4000U);
  EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, 0.0625F).durationMicroseconds, 62'500U);
  EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, 0.125F).durationMicroseconds, 125'000U - 65'536U);
  EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, 0.0F).durationMicroseconds, 0U);
}

// In double precision each would come out one short.
TEST(HapticPulse, HasItsDurationInSinglePrecision) {
  EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, 0.005F).durationMicroseconds, 5000U);
  EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, 0.01F).durationMicroseconds, 10'000U);
  EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, 0.02F).durationMicroseconds, 20'000U);
}

TEST(HapticPulse, OfAnAbsurdDurationIsDefined) {
  for (const float seconds : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(), 1e30F, -1e30F}) {
    EXPECT_EQ(MakeHapticPulse(0, 0, kTenMegahertz, seconds).durationMicroseconds, 0U);
  }
}

}  // namespace
}  // namespace ombrel::test
