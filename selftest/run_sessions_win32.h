#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "faults.h"
#include "session.h"

namespace ombrel::selftest {

// Programs and files of the self-test. All paths are relative to its folder, which is the current one: no program is told
// where that is, and none can tell.
struct Surroundings {
  std::filesystem::path programs = "bin";
  std::filesystem::path driver = "driver/ombrel";
  std::filesystem::path work;  // a folder of the run's own
  std::string sharing;         // as the command line of the stand-ins spells it
  bool isWine = false;

  [[nodiscard]] std::filesystem::path Driver() const { return driver / "bin/win64/driver_ombrel.dll"; }
};

// A session of the driver between the stand-ins, each in a process of its own.
[[nodiscard]] SessionOutcome RunSession(const Surroundings& surroundings, const SessionPlan& plan);

struct FaultsRun {
  Json report;       // what the scenarios program wrote; null when there is nothing
  std::string exit;  // how it ended
};

[[nodiscard]] FaultsRun RunFaults(const Surroundings& surroundings, const std::vector<FaultPlan>& faults);

// Runs a program to its end, its output going to a file, and says how it ended: "exit code 1", "it had to be ended".
struct Ending {
  std::uint32_t code = 0;
  std::string text;
};
[[nodiscard]] Ending RunToEnd(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                              const std::filesystem::path& output, std::uint32_t timeoutMs);

}  // namespace ombrel::selftest
