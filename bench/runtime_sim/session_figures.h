#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "session_record.h"

namespace bench {

/// What a session comes to.
struct SessionFigures {
  double posesPerSecond = 0.0;   ///< that arrived at the runtime
  double framesPerSecond = 0.0;  ///< that the companion held
  std::size_t framesPresented = 0;
  std::size_t framesReceived = 0;
  std::int64_t dropped = 0;  ///< display intervals without a frame
  std::vector<double> poseToRuntimeMs;
  std::vector<double> frameToCompanionMs;
  bool framesByTime = false;  ///< frames were told from one another by time, as no pose travels with them
  std::vector<double> presentIntervalsMs;
  std::vector<double> heldIntervalsMs;
  std::vector<double> presentMs;
  std::vector<double> poseAgeMs;
  std::vector<double> poseToFrameMs;
};

[[nodiscard]] SessionFigures FiguresOf(const SessionRecord& record);

/// A percentile of a line of zeros is no figure: whether poses and frames were found at both ends.
[[nodiscard]] bool Rests(const SessionFigures& figures);

/// One line for people.
[[nodiscard]] std::string SummaryLine(const SessionFigures& figures);

}  // namespace bench
