#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "report.h"

namespace ombrel::selftest {

struct SessionPlan {
  std::string mode;  // "direct", "virtual"
  int fps = 60;
  double seconds = 8;  // of frames
};

// What a session came to. Times in milliseconds.
struct SessionOutcome {
  SessionPlan plan;
  std::string failure;                  // why it did not run to its end; empty if it did
  std::vector<std::string> complaints;  // of the companion

  double framesPerSecond = 0;  // presented
  std::size_t presented = 0, received = 0;
  std::int64_t dropped = 0;                     // intervals of the display without a frame
  std::uint64_t matching = 0, mismatching = 0;  // frames by the pose beside them; of the virtual display there is none
  std::size_t posesSent = 0, posesArrived = 0;  // as long as the runtime took poses
  std::uint64_t picturesWanted = 0, pictures = 0;  // named by the script, and seen

  std::vector<double> poseMs;         // from the companion's write to the runtime
  std::vector<double> frameMs;        // from the call of Present to the companion's hold
  bool isFrameMsByTime = false;       // matched by time, since no pose comes with frames
  std::vector<double> syncWaitMs;     // the runtime's waits for the keyed mutex that the driver holds as it draws
  std::vector<double> pacingErrorMs;  // of the times between two frames, beside the period

  Json charts = Json::array();
  std::string contactSheet;  // a data URL; empty when no picture was taken
};

// Reads what both stand-ins left in a folder. Throws std::exception when a file is missing or not understood.
[[nodiscard]] SessionOutcome ReadOutcome(const SessionPlan& plan, const std::filesystem::path& folder);

// `isTimely`: whether the machine's times say anything. Where the processor draws, what comes late is unknown, not bad.
[[nodiscard]] std::vector<Verdict> Judge(const SessionOutcome& session, bool isTimely);
[[nodiscard]] Json SectionOf(const SessionOutcome& session);

}  // namespace ombrel::selftest
