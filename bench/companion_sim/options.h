#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "sharing/choice.h"

namespace bench {

// What the command line asks for.
struct Options {
  std::filesystem::path out;     // folder of pictures; empty: none are saved
  std::filesystem::path script;  // empty: the head sweeps for ever
  std::filesystem::path summary;
  std::filesystem::path framesCsv;
  std::filesystem::path posesCsv;

  double seconds = 0;        // after the first connection; 0: no limit
  std::uint64_t frames = 0;  // 0: no limit
  bool untilDisconnect = false;
  double connectTimeoutSeconds = 60;

  double poseRate = 60;
  std::uint32_t poseFormat = 4;
  std::optional<std::uint32_t> framerate;

  std::uint64_t saveEvery = 0;  // 0: no single frames
  int saveWidth = 0;            // 0: as wide as the frame
  std::uint64_t requireFrames = 0;
  std::uint64_t requireMatching = 0;
  std::uint64_t requireNamed = 0;  // pictures that the script names
  std::uint64_t requireHaptics = 0;
  bool readFrames = true;
  std::optional<Sharing> sharing;  // unset: the machine is asked, if frames are read
  bool printFrames = false;
};

// Reads the command line. When the program shall end at once (help, bad options), says why and gives the exit code.
std::optional<int> ParseOptions(int argc, char** argv, Options& options);

}  // namespace bench
