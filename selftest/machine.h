#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "doctor/machine.h"
#include "report.h"

namespace ombrel::selftest {

// What is looked at of a machine. Nothing here names its owner.
struct MachineFacts {
  std::string windows;  // version and build
  bool isWine = false;  // no Windows at all
  std::string processor;
  unsigned processors = 0;  // logical ones
  std::uint64_t memoryMiB = 0;
  std::vector<doctor::Adapter> adapters;  // in the order of the system
  std::string openGl;     // what it draws with; told under Wine alone, which makes up the names of its adapters
  double timerMs = 0;     // the resolution that a program can have
  double sleptMs = 0;     // the longest of some waits of one millisecond, at a resolution of one
  std::string powerPlan;  // empty when there is none
};

// Whether frames are drawn by the processor, so that their times say nothing about a graphics card's.
[[nodiscard]] bool DrawsInSoftware(const MachineFacts& machine);

[[nodiscard]] std::vector<Verdict> Judge(const MachineFacts& machine);
[[nodiscard]] Json SectionOf(const MachineFacts& machine);

}  // namespace ombrel::selftest
