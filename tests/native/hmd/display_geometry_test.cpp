#include "hmd/display_geometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace ombrel::test {
namespace {

struct Case {
  std::int32_t width, height, percent;
  std::int32_t targetWidth, targetHeight;
};

class ScaledGeometryTest : public testing::TestWithParam<Case> {};

TEST_P(ScaledGeometryTest, HasTheTargetThatTheSettingsAskForAndAWindowToMatch) {
  const Case& given = GetParam();
  const DisplayGeometry geometry = ScaledGeometry(given.width, given.height, given.percent);
  EXPECT_EQ(geometry.renderTargetWidth, given.targetWidth);
  EXPECT_EQ(geometry.renderTargetHeight, given.targetHeight);
  EXPECT_EQ(geometry.windowWidth, 2 * given.targetWidth);
  EXPECT_EQ(geometry.windowHeight, given.targetHeight);
  EXPECT_GE(geometry.renderScale, 1.0F);
}

INSTANTIATE_TEST_SUITE_P(Usual, ScaledGeometryTest,
                         testing::Values(Case{2560, 1440, 100, 1280, 1440}, Case{2560, 1440, 150, 1920, 2160},
                                         Case{2560, 1440, 200, 2560, 2880}, Case{0, 0, 0, 500, 600},
                                         // 133 percent in single precision, truncated
                                         Case{2560, 1440, 133, 1702, 1915}, Case{2002, 1001, 133, 1331, 1331}));

INSTANTIATE_TEST_SUITE_P(Limits, ScaledGeometryTest,
                         testing::Values(Case{2560, 1440, 50, 1280, 1440}, Case{2560, 1440, 99, 1280, 1440},
                                         Case{2560, 1440, -200, 1280, 1440}, Case{998, 599, 100, 500, 600},
                                         Case{1000, 600, 100, 500, 600}, Case{1002, 601, 100, 501, 601},
                                         Case{2560, 0, 100, 1280, 600}, Case{-2560, -1440, 100, 500, 600},
                                         Case{2560, 1440, 0, 1280, 1440}, Case{600, 400, 200, 600, 800}));

INSTANTIATE_TEST_SUITE_P(OddWidthsAreHalvedFirst, ScaledGeometryTest,
                         testing::Values(Case{1921, 1080, 100, 960, 1080}, Case{1921, 1080, 150, 1440, 1620},
                                         // 960 * 1.33 = 1276.8; halves, and rounding, would make it 1277
                                         Case{1921, 1080, 133, 1276, 1436}));

TEST(ScaledGeometry, KeepsTheScale) {
  EXPECT_EQ(ScaledGeometry(0, 0, 150).renderScale, 1.5F);
  EXPECT_EQ(ScaledGeometry(0, 0, 50).renderScale, 1.0F);
}

TEST(ScaledGeometry, OfAbsurdSettingsIsDefined) {
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  for (const std::int32_t size : {kLeast, kMost}) {
    for (const std::int32_t percent : {kLeast, kMost}) {
      const DisplayGeometry geometry = ScaledGeometry(size, size, percent);
      EXPECT_GE(geometry.renderTargetWidth, 500);
      EXPECT_GE(geometry.renderTargetHeight, 600);
      EXPECT_EQ(geometry.windowWidth, 2 * geometry.renderTargetWidth);
    }
  }
}

TEST(DisplayGeometry, WithoutSettingsIsThatOfAPhone) {
  const DisplayGeometry geometry;
  EXPECT_EQ(geometry.renderTargetWidth, 1280);
  EXPECT_EQ(geometry.renderTargetHeight, 1440);
  EXPECT_EQ(geometry.windowWidth, 2560);
  EXPECT_EQ(geometry.windowHeight, 1440);
  EXPECT_EQ(geometry.renderScale, 1.0F);
}

}  // namespace
}  // namespace ombrel::test
