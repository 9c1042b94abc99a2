#include "report.h"

#include <cstdio>

#include "base/text_file.h"
#include "nlohmann/json.hpp"
#include "sharing/choice.h"

namespace bench {
namespace {

double PosesPerSecond(const Outcome& outcome) {
  return outcome.seconds > 0 ? static_cast<double>(outcome.poses) / outcome.seconds : 0;
}

}  // namespace

void CheckRequirements(const Options& options, Outcome& outcome) {
  if (outcome.frames < options.requireFrames) {
    outcome.failures.push_back("read " + std::to_string(outcome.frames) + " frames, required were " +
                               std::to_string(options.requireFrames));
  }
  if (outcome.named < options.requireNamed) {
    outcome.failures.push_back("got " + std::to_string(outcome.named) + " named pictures, required were " +
                               std::to_string(options.requireNamed));
  }
  if (outcome.haptics < options.requireHaptics) {
    outcome.failures.push_back("got " + std::to_string(outcome.haptics) + " haptic pulses, required were " +
                               std::to_string(options.requireHaptics));
  }
  if (options.requireMatching == 0) return;
  if (outcome.matching < options.requireMatching) {
    outcome.failures.push_back(std::to_string(outcome.matching) + " frames had a pose that was sent, required were " +
                               std::to_string(options.requireMatching));
  }
  if (outcome.mismatching != 0) {
    outcome.failures.push_back(std::to_string(outcome.mismatching) + " frames had a pose that was never sent");
  }
}

std::string SummaryLine(const Outcome& outcome) {
  char text[400];
  std::snprintf(text, sizeof(text),
                "companion: %.1f s, %u connections, %llu poses (%.1f/s), %llu frames (%.1f/s), "
                "%llu matching, %llu mismatching, %llu before ours, %llu without pose, pose to companion median %.1f "
                "ms p99 %.1f ms, "
                "%llu haptics: %s",
                outcome.seconds, outcome.connections, static_cast<unsigned long long>(outcome.poses),
                PosesPerSecond(outcome), static_cast<unsigned long long>(outcome.frames), outcome.framesPerSecond,
                static_cast<unsigned long long>(outcome.matching), static_cast<unsigned long long>(outcome.mismatching),
                static_cast<unsigned long long>(outcome.unknown), static_cast<unsigned long long>(outcome.withoutPose),
                outcome.poseAgeMedianMs, outcome.poseAgeP99Ms, static_cast<unsigned long long>(outcome.haptics),
                outcome.failures.empty() ? "ok" : "FAILED");
  return text;
}

void WriteSummary(const Options& options, const Outcome& outcome) {
  const nlohmann::ordered_json summary = {
      {"ok", outcome.failures.empty()},
      {"sharing", NameOf(SharingInUse())},
      {"failures", outcome.failures},
      {"connections", outcome.connections},
      {"seconds", outcome.seconds},
      {"poses", outcome.poses},
      {"posesPerSecond", PosesPerSecond(outcome)},
      {"frames", outcome.frames},
      {"framesPerSecond", outcome.framesPerSecond},
      {"matching", outcome.matching},
      {"mismatching", outcome.mismatching},
      {"namedPictures", outcome.named},
      {"beforeOurs", outcome.unknown},
      {"withoutPose", outcome.withoutPose},
      {"poseToCompanionMs", {{"median", outcome.poseAgeMedianMs}, {"p99", outcome.poseAgeP99Ms}}},
      {"haptics", outcome.haptics},
      {"pictures", outcome.pictures},
      {"skippedPictures", outcome.skippedPictures},
      {"required",
       {{"frames", options.requireFrames},
        {"matching", options.requireMatching},
        {"namedPictures", options.requireNamed},
        {"haptics", options.requireHaptics}}},
  };
  WriteText(options.summary, summary.dump(2) + '\n');
}

}  // namespace bench
