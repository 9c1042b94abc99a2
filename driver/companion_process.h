#pragma once

#include <vector>

#include "platform/process.h"

namespace ombrel {

// Whether the companion program is among the processes: its name counts letter by letter, and the first process of the
// list, which is the idle one, is never compared (compatibility.md, C19).
[[nodiscard]] bool IsCompanionRunning(const std::vector<ProcessEntry>& processes);

}  // namespace ombrel
