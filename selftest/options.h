#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "faults.h"
#include "session.h"
#include "sharing/choice.h"

namespace ombrel::selftest {

// What the command line asks for.
struct Options {
  std::filesystem::path out = ".";        // where the report goes
  bool isBrief = false;                   // about half a minute
  std::vector<std::string> parts;         // of kParts; all, when none is named
  std::optional<bench::Sharing> sharing;  // unset: the machine is asked
  bool isWaitingForKey = false;

  // Parts of the program that run in processes of their own.
  std::filesystem::path askDirect3D;  // where the answers go; empty: this is not such a process
  std::optional<std::uint32_t> takeTurns;

  [[nodiscard]] bool Has(const char* part) const;
  [[nodiscard]] std::vector<SessionPlan> Sessions() const;
  [[nodiscard]] const std::vector<FaultPlan>& FaultsToPlay() const { return isBrief ? FaultsInBrief() : Faults(); }
};

inline constexpr const char* kParts[] = {"machine", "direct3d", "sessions", "faults"};

// Reads the command line. When the program shall end at once (help, bad options), says why and gives the exit code.
[[nodiscard]] std::optional<int> ParseOptions(int argc, char** argv, Options& options);

}  // namespace ombrel::selftest
