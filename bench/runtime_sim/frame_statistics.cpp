#include "frame_statistics.h"

#include <algorithm>
#include <span>

#include "base/clock.h"
#include "base/percentile.h"

namespace bench {
namespace {

FrameFigures FiguresOf(std::span<const FrameReport> frames) {
  FrameFigures figures;
  figures.frames = frames.size();
  if (frames.empty()) {
    return figures;
  }
  std::vector<double> poseAges;
  std::vector<double> presents;
  for (const FrameReport& frame : frames) {
    figures.missedIntervals += frame.missedIntervals;
    presents.push_back(TicksToMilliseconds(frame.presentedTicks - frame.presentTicks));
    if (frame.poseTicks != 0) {
      poseAges.push_back(TicksToMilliseconds(frame.renderTicks - frame.poseTicks));
    }
  }
  figures.seconds = TicksToSeconds(frames.back().presentTicks - frames.front().presentTicks);
  figures.poseAgeMedianMs = Percentile(poseAges, 0.5);
  figures.poseAgeP99Ms = Percentile(poseAges, 0.99);
  figures.presentMedianMs = Percentile(presents, 0.5);
  figures.presentP99Ms = Percentile(presents, 0.99);
  return figures;
}

}  // namespace

void FrameStatistics::Add(const FrameReport& report) {
  const std::lock_guard lock(mutex_);
  frames_.push_back(report);
}

FrameFigures FrameStatistics::All() const {
  const std::lock_guard lock(mutex_);
  return FiguresOf(frames_);
}

FrameFigures FrameStatistics::TakeRecent() {
  const std::lock_guard lock(mutex_);
  const FrameFigures figures = FiguresOf(std::span(frames_).subspan(seen_));
  seen_ = frames_.size();
  return figures;
}

std::uint64_t FrameStatistics::Frames() const {
  const std::lock_guard lock(mutex_);
  return frames_.size();
}

}  // namespace bench
