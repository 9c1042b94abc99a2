#include <cmath>

#include "motion/head_motion.h"

#include <gtest/gtest.h>

namespace bench {
namespace {

TEST(SweepMotion, VisitsLeftRightUpAndDownAndRestsThere) {
  const HeadMotion motion = SweepMotion(16, 1.0F, 0.5F);
  EXPECT_NEAR(motion.Seconds(), 16, 1e-9);
  EXPECT_FLOAT_EQ(motion.At(1.6).yaw, 1.0F);
  EXPECT_FLOAT_EQ(motion.At(1.9).yaw, 1.0F);
  EXPECT_FLOAT_EQ(motion.At(5.7).yaw, -1.0F);
  EXPECT_FLOAT_EQ(motion.At(9.7).pitch, 0.5F);
  EXPECT_FLOAT_EQ(motion.At(13.7).pitch, -0.5F);
  EXPECT_FLOAT_EQ(motion.At(16).pitch, 0.0F);
}

TEST(SweepMotion, NeverJumps) {
  const HeadMotion motion = SweepMotion(16, 1.0F, 0.5F);
  for (double at = 0; at < 16; at += 0.01) {
    EXPECT_LT(std::abs(motion.At(at + 0.01).yaw - motion.At(at).yaw), 0.02F) << at;
    EXPECT_LT(std::abs(motion.At(at + 0.01).pitch - motion.At(at).pitch), 0.02F) << at;
  }
}

TEST(HeadMotion, HoldsItsStartBeforeAndItsEndAfter) {
  const HeadMotion motion({0.1F, 0}, {{2, {0.5F, 0}}});
  EXPECT_FLOAT_EQ(motion.At(-1).yaw, 0.1F);
  EXPECT_FLOAT_EQ(motion.At(1).yaw, 0.3F);
  EXPECT_FLOAT_EQ(motion.At(100).yaw, 0.5F);
}

}  // namespace
}  // namespace bench
