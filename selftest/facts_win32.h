#pragma once

#include <string>
#include <vector>

#include "machine.h"

namespace ombrel::selftest {

// Only looks.
[[nodiscard]] MachineFacts LookAtMachine();

// Which of the programs run that the self-test would disturb, or be disturbed by: the runtime's, and any companion.
[[nodiscard]] std::vector<std::string> RunningPrograms();

}  // namespace ombrel::selftest
