#include "session_figures.h"

#include <cstdio>
#include <numeric>

#include "base/percentile.h"

namespace bench {
namespace {

double PerSecond(const std::vector<TimedPose>& events, std::int64_t frequency) {
  if (events.size() < 2) {
    return 0.0;
  }
  const auto seconds = static_cast<double>(events.back().ticks - events.front().ticks) / static_cast<double>(frequency);
  return seconds > 0.0 ? static_cast<double>(events.size() - 1) / seconds : 0.0;
}

std::vector<double> ToMilliseconds(const std::vector<std::int64_t>& ticks, std::int64_t frequency) {
  std::vector<double> milliseconds;
  for (const std::int64_t value : ticks) {
    milliseconds.push_back(1000.0 * static_cast<double>(value) / static_cast<double>(frequency));
  }
  return milliseconds;
}

std::vector<std::int64_t> Intervals(const std::vector<TimedPose>& events) {
  std::vector<std::int64_t> intervals;
  for (std::size_t index = 1; index < events.size(); ++index) {
    intervals.push_back(events[index].ticks - events[index - 1].ticks);
  }
  return intervals;
}

}  // namespace

SessionFigures FiguresOf(const SessionRecord& record) {
  const auto milliseconds = [&record](const std::vector<std::int64_t>& ticks) {
    return ToMilliseconds(ticks, record.frequency);
  };
  SessionFigures figures;
  figures.posesPerSecond = PerSecond(record.arrived, record.frequency);
  figures.framesPerSecond = PerSecond(record.held, record.frequency);
  figures.framesPresented = record.presented.size();
  figures.framesReceived = record.held.size();
  figures.dropped = std::accumulate(record.dropped.begin(), record.dropped.end(), std::int64_t{0});
  figures.poseToRuntimeMs = milliseconds(PoseLatencies(record.sent, record.arrived));
  figures.frameToCompanionMs = milliseconds(FrameLatencies(record.presented, record.held));
  if (figures.frameToCompanionMs.empty()) {
    figures.framesByTime = true;
    figures.frameToCompanionMs = milliseconds(FrameLatenciesByTime(record.presented, record.held));
  }
  figures.presentIntervalsMs = milliseconds(Intervals(record.presented));
  figures.heldIntervalsMs = milliseconds(Intervals(record.held));
  figures.presentMs = milliseconds(record.presentTicks);
  figures.poseAgeMs = milliseconds(record.poseAgeTicks);
  figures.poseToFrameMs = milliseconds(record.poseToFrameTicks);
  return figures;
}

bool Rests(const SessionFigures& figures) {
  return figures.posesPerSecond > 0.0 && figures.framesPerSecond > 0.0 && !figures.poseToRuntimeMs.empty() &&
         !figures.frameToCompanionMs.empty();
}

std::string SummaryLine(const SessionFigures& figures) {
  char text[300];
  std::snprintf(text, sizeof(text),
                "%.1f poses/s, %.1f frames/s, %zu of %zu frames received, %lld dropped, pose to runtime median %.2f ms "
                "p99 %.2f ms, frame to companion median %.2f ms p99 %.2f ms%s",
                figures.posesPerSecond, figures.framesPerSecond, figures.framesReceived, figures.framesPresented,
                static_cast<long long>(figures.dropped), Percentile(figures.poseToRuntimeMs, 0.5),
                Percentile(figures.poseToRuntimeMs, 0.99), Percentile(figures.frameToCompanionMs, 0.5),
                Percentile(figures.frameToCompanionMs, 0.99), figures.framesByTime ? " (by time)" : "");
  return text;
}

}  // namespace bench
