#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "sharing/choice.h"

namespace bench {

/// How frames are handed to the driver; automatic takes what the headset offers.
enum class Mode { Automatic, Direct, Virtual };

/// What the command line asks for. Empty paths: not written, not read.
struct SimulationOptions {
  std::filesystem::path driver;
  std::filesystem::path settings;
  std::filesystem::path framesCsv;
  std::filesystem::path posesCsv;
  std::filesystem::path summary;
  std::filesystem::path record;
  std::filesystem::path driverLog;
  std::filesystem::path haptics;
  Mode mode = Mode::Automatic;
  double seconds = 0.0;      ///< of frames; 0: no limit
  std::uint64_t frames = 0;  ///< 0: no limit
  double fps = 0.0;          ///< 0: the display rate that the driver reports
  std::uint64_t requireFrames = 0;
  std::optional<Sharing> sharing;  ///< unset: the machine is asked
  bool keepDevices = false;
  bool quiet = false;
};

/// Reads the command line. When the program shall end at once (help, bad options), says why and gives the exit code.
[[nodiscard]] std::optional<int> ParseOptions(int argc, char** argv, SimulationOptions& options);

}  // namespace bench
