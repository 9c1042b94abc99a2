#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/process.h"

namespace ombrel::test {

// The system's processes as the driver sees them natively, in the place of platform/'s own.
struct Processes {
  std::vector<ProcessEntry> listed{{0, "[System Process]"}, {8, "Ombrel.exe"}, {12, "vrmonitor.exe"}};
  std::string ownPath = R"(C:\runtime\bin\host.exe)";
  std::vector<std::uint32_t> ended;  // by the driver
  bool isOwnEnded = false;
};

// Those of the test program; a test that changes them puts them back.
[[nodiscard]] Processes& TheProcesses();

}  // namespace ombrel::test
