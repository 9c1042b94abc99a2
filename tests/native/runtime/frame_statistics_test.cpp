#include "frame_statistics.h"

#include <gtest/gtest.h>

#include "base/clock.h"

namespace bench {
namespace {

FrameReport At(double seconds, double poseAgeMs, std::uint32_t missed) {
  FrameReport report;
  report.presentTicks = SecondsToTicks(100.0 + seconds);
  report.presentedTicks = report.presentTicks + SecondsToTicks(0.002);
  report.renderTicks = report.presentTicks - SecondsToTicks(0.005);
  report.poseTicks = report.renderTicks - SecondsToTicks(poseAgeMs / 1000.0);
  report.missedIntervals = missed;
  return report;
}

TEST(FrameStatistics, TellsRateAgeAndMissedIntervals) {
  FrameStatistics statistics;
  for (int frame = 0; frame < 11; ++frame) statistics.Add(At(0.1 * frame, frame + 1.0, frame == 5 ? 3U : 0U));
  const FrameFigures all = statistics.All();
  EXPECT_EQ(all.frames, 11U);
  EXPECT_NEAR(all.FramesPerSecond(), 10.0, 0.01);
  EXPECT_EQ(all.missedIntervals, 3U);
  EXPECT_NEAR(all.poseAgeMedianMs, 6.0, 0.01);
  EXPECT_NEAR(all.poseAgeP99Ms, 11.0, 0.01);
  EXPECT_NEAR(all.presentMedianMs, 2.0, 0.01);
}

TEST(FrameStatistics, RecentFiguresBeginWhereTheLastEnded) {
  FrameStatistics statistics;
  statistics.Add(At(0.0, 1.0, 7));
  EXPECT_EQ(statistics.TakeRecent().frames, 1U);
  statistics.Add(At(0.1, 1.0, 2));
  statistics.Add(At(0.2, 1.0, 0));
  const FrameFigures recent = statistics.TakeRecent();
  EXPECT_EQ(recent.frames, 2U);
  EXPECT_EQ(recent.missedIntervals, 2U);
  EXPECT_EQ(statistics.TakeRecent().frames, 0U);
  EXPECT_EQ(statistics.All().missedIntervals, 9U);
}

TEST(FrameStatistics, FramesBeforeAnyPoseHaveNoAge) {
  FrameStatistics statistics;
  FrameReport report = At(0.0, 0.0, 0);
  report.poseTicks = 0;
  statistics.Add(report);
  EXPECT_EQ(statistics.All().poseAgeMedianMs, 0.0);
  EXPECT_EQ(statistics.All().FramesPerSecond(), 0.0);
}

}  // namespace
}  // namespace bench
