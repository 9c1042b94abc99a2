#pragma once

#include <string>
#include <vector>

#include "frame_taker.h"
#include "options.h"

namespace bench {

// What a run came to.
struct Outcome {
  std::uint32_t connections = 0;
  double seconds = 0;  // from the first connection to the end
  std::uint64_t poses = 0;
  std::uint64_t frames = 0;
  double framesPerSecond = 0;  // between the first and the last frame
  std::uint64_t matching = 0;
  std::uint64_t mismatching = 0;
  std::uint64_t unknown = 0;
  std::uint64_t withoutPose = 0;
  double poseAgeMedianMs = 0;  // from sending a pose to holding a frame rendered with it
  double poseAgeP99Ms = 0;
  std::uint64_t haptics = 0;
  std::uint64_t named = 0;  // pictures that the script named
  std::uint64_t pictures = 0;
  std::uint64_t skippedPictures = 0;
  std::vector<std::string> failures;
};

// Adds what the options require and the outcome lacks to its failures.
void CheckRequirements(const Options& options, Outcome& outcome);

// One line for people.
std::string SummaryLine(const Outcome& outcome);

// All of it as JSON, with what was required, in the file that the options name. Throws std::runtime_error when that cannot
// be written.
void WriteSummary(const Options& options, const Outcome& outcome);

}  // namespace bench
